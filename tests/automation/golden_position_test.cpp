// Positions through COM against points from other tools, and one flavour's results against
// another's.
//
// The tables in tests/data/geodesy say where their numbers come from. The results are written to
// golden_position.txt in the build folder: a name and 17 digits a line.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iomanip>
#include <map>
#include <string>
#include <vector>

#include "automation/support/positions.h"
#include "table.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr double kRadiusMetres = 6378137.0;
constexpr double kRadsPerDegree = 0.017453292519943295;

// How far flavours may be apart: their mathematical functions differ in the last bits.
constexpr double kFlavourMetres = 1e-7;

struct Result {
    std::string name;
    double value;
    double expected;
    double tolerance;         // of the expected value, in the value's unit
    double flavourTolerance;  // likewise
};
using Results = std::vector<Result>;

// How well the inverse can come back where it is no closed formula: the New Zealand series agree to
// 1.5 mm at the ends of the country, the Danish polynomials to 36 mm in their worst corner.
double InverseToleranceOf(int grid, double tolerance) {
    if (grid == 21) return 0.0015;
    if (grid == 48 || grid == 49) return 0.036;
    return tolerance;
}

void AddGridPoint(const TableRow& row, Results& results) {
    ASSERT_EQ(9U, row.fields.size());
    const auto number = [&](size_t i) { return std::stod(row.fields[i]); };
    const int grid = std::stoi(row.fields[0]);
    const std::wstring zone(row.fields[1].begin(), row.fields[1].end());
    const auto onGrid = [&](double latitude, double longitude) {
        const ComPtr<IDispatch> position = NewPosition();
        ExpectSteps(position.Get(), {{L"=Datum", {number(2)}, ""},
                                     {L"=Latitude", {latitude}, ""},
                                     {L"=Longitude", {longitude}, ""},
                                     {L"=Grid", {grid}, ""}});
        if (!zone.empty()) ExpectSteps(position.Get(), {{L"=Zone", {zone}, ""}});
        return position;
    };
    const ComPtr<IDispatch> forward = onGrid(number(3), number(4));
    const ComPtr<IDispatch> inverse = onGrid(0, 0);
    ExpectSteps(inverse.Get(), {{L"=Easting", {number(5)}, ""}, {L"=Northing", {number(6)}, ""}});

    const double back = InverseToleranceOf(grid, number(7));
    const double north = 1 / (kRadsPerDegree * kRadiusMetres);  // degrees of a metre
    const double east = north / std::cos(number(3) * kRadsPerDegree);
    const auto add = [&](IDispatch* position, const wchar_t* member, size_t field, double tolerance,
                         double unitsOfMetre) {
        results.push_back({row.where + ' ' + Narrow(member), Number(position, member),
                           number(field), tolerance * unitsOfMetre, kFlavourMetres * unitsOfMetre});
    };
    add(forward.Get(), L"Easting", 5, number(7), 1);
    add(forward.Get(), L"Northing", 6, number(7), 1);
    add(inverse.Get(), L"Latitude", 3, back, north);
    add(inverse.Get(), L"Longitude", 4, back, east);
}

void AddShift(const TableRow& row, Results& results) {
    ASSERT_EQ(8U, row.fields.size());
    const auto number = [&](size_t i) { return std::stod(row.fields[i]); };
    const ComPtr<IDispatch> p = NewPosition();
    ExpectSteps(p.Get(), {{L"=Datum", {number(0)}, ""},
                          {L"=LatitudeRads", {number(2)}, ""},
                          {L"=LongitudeRads", {number(3)}, ""},
                          {L"SetAltitude", {1, number(4)}, ""},
                          {L"=Datum", {number(1)}, ""}});
    // A few units in the last place of an angle, 1.4 nm each, or of a satellite's height.
    const double tolerance = number(4) > 1e6 ? 2e-8 : 5e-9;
    const double north = tolerance / kRadiusMetres;
    const auto add = [&](const char* name, double value, size_t field, double allowed) {
        results.push_back({row.where + name, value, number(field), allowed, 2 * allowed});
    };
    add(" latitude", Number(p.Get(), L"LatitudeRads"), 5, north);
    add(" longitude", Number(p.Get(), L"LongitudeRads"), 6, north / std::cos(number(5)));
    add(" height", Number(p.Get(), L"Altitude", {1}), 7, tolerance);
}

// Behind the head line of each table. Computed once for all tests.
const Results& AllResults() {
    static const Results results = [] {
        Results made;
        for (const char* file : {"check_values", "grids", "shifts"}) {
            const auto rows = ReadTable(std::string("geodesy/") + file + ".csv");
            const auto add = std::string(file) == "shifts" ? &AddShift : &AddGridPoint;
            for (size_t i = 1; i < rows.size(); ++i)
                add(rows[i], made);
        }
        return made;
    }();
    return results;
}

using GoldenPositionTest = AutomationTest;

TEST_F(GoldenPositionTest, AgreesWithOtherTools) {
    ASSERT_LE(4U * 1100 + 3 * 280, AllResults().size());
    for (const Result& result : AllResults())
        EXPECT_NEAR(result.expected, result.value, result.tolerance) << result.name;
}

TEST_F(GoldenPositionTest, WritesItsResults) {
    std::ofstream file(KAVREL_BUILD "/golden_position.txt", std::ios::binary);
    for (const Result& result : AllResults())
        file << result.name << '\t' << std::setprecision(17) << result.value << '\n';
    file.close();
    EXPECT_TRUE(file.good());
}

// The 64-bit flavour's run of this test gives the reference, beside this flavour's build folder.
TEST_F(GoldenPositionTest, AgreesWithTheOtherFlavour) {
    std::ifstream file(KAVREL_BUILD "/../win64/golden_position.txt", std::ios::binary);
    if (!file) GTEST_SKIP() << "no results of the win64 flavour to compare with";
    std::map<std::string, double> reference;
    for (std::string name, value; std::getline(file, name, '\t') && std::getline(file, value);)
        reference[name] = std::stod(value);
    for (const Result& result : AllResults()) {
        const auto found = reference.find(result.name);
        ASSERT_NE(reference.end(), found) << result.name << ": the reference is of another version";
        EXPECT_NEAR(found->second, result.value, result.flavourTolerance) << result.name;
    }
}

}  // namespace

}  // namespace kavrel::tests
