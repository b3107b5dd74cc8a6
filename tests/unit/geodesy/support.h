// What several of the geodesy's tests need.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "geodesy/angle.h"
#include "geodesy/position.h"

namespace kavrel::test {

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kEarthRadiusMetres = 6.4e6;

// Rows of tests/data/geodesy/<name>, without comments and the head line.
inline std::vector<std::vector<std::string>> ReadTable(const std::string& name) {
    std::ifstream file(std::string(KAVREL_TEST_DATA) + "/geodesy/" + name);
    EXPECT_TRUE(file.is_open()) << name;
    std::vector<std::vector<std::string>> rows;
    std::string line;
    bool isHeadRead = false;
    while (std::getline(file, line)) {
        if (line.starts_with('#')) continue;
        if (!isHeadRead) {
            isHeadRead = true;
            continue;
        }
        std::vector<std::string>& fields = rows.emplace_back();
        std::istringstream stream(line);
        for (std::string field; std::getline(stream, field, ',');)
            fields.push_back(field);
    }
    return rows;
}

inline std::string ErrorOf(Position& position) {
    return std::string(position.error().text());
}

// A position that has been used, so that changes of datum shift it.
inline Ref<Position> PositionAt(double latitudeDegrees, double longitudeDegrees,
                                DatumId datum = 1) {
    return MakeRef<Position>(
        GeoPoint{RadsFromDegrees(latitudeDegrees), RadsFromDegrees(longitudeDegrees)}, 0.0, 0.0,
        datum);
}

}  // namespace kavrel::test
