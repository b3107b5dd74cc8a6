// Positions through COM against points from other tools, and one flavour's results against
// another's.
//
// The tables in tests/data/geodesy say where their numbers come from. The results are written to
// golden_position.txt in the build folder: a name, the bits, and 17 digits a line.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "automation/support/positions.h"

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

using Table = std::vector<std::vector<std::string>>;

Table ReadTable(const std::string& name) {
    std::ifstream file(KAVREL_TEST_DATA "/geodesy/" + name);
    Table rows;
    bool isHead = true;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (std::exchange(isHead, false)) continue;
        std::vector<std::string> row;
        std::istringstream fields(line);
        for (std::string field; std::getline(fields, field, ',');)
            row.push_back(field);
        rows.push_back(row);
    }
    return rows;
}

// How well the inverse can come back where it is no closed formula: the New Zealand series agree to
// 1.5 mm at the ends of the country, the Danish polynomials to 36 mm in their worst corner.
double InverseToleranceOf(int grid, double tolerance) {
    if (grid == 21) return 0.0015;
    if (grid == 48 || grid == 49) return 0.036;
    return tolerance;
}

void AddGridPoint(const std::vector<std::string>& row, std::vector<Result>& results) {
    ASSERT_EQ(9U, row.size());
    const std::string name = "grid " + row[0] + ' ' + row[1] + " at " + row[3] + ' ' + row[4] + ' ';
    const int grid = std::stoi(row[0]);
    const int datum = std::stoi(row[2]);
    const int zone = row[1].empty() ? 0 : std::stoi(row[1]);
    const double latitude = std::stod(row[3]);
    const double longitude = std::stod(row[4]);
    const double easting = std::stod(row[5]);
    const double northing = std::stod(row[6]);
    const double tolerance = std::stod(row[7]);

    const ComPtr<IDispatch> forward = NewPosition();
    ExpectSteps(forward.Get(), {{L"=Datum", {datum}, ""},
                                {L"=Latitude", {latitude}, ""},
                                {L"=Longitude", {longitude}, ""},
                                {L"=Grid", {grid}, ""}});
    if (zone != 0) ExpectSteps(forward.Get(), {{L"=Zone", {zone}, ""}});
    results.push_back(
        {name + "easting", Number(forward.Get(), L"Easting"), easting, tolerance, kFlavourMetres});
    results.push_back({name + "northing", Number(forward.Get(), L"Northing"), northing, tolerance,
                       kFlavourMetres});

    const ComPtr<IDispatch> inverse = NewPosition();
    ExpectSteps(inverse.Get(), {{L"=Datum", {datum}, ""}, {L"=Grid", {grid}, ""}});
    if (zone != 0) ExpectSteps(inverse.Get(), {{L"=Zone", {std::to_wstring(zone)}, ""}});
    ExpectSteps(inverse.Get(), {{L"=Easting", {easting}, ""}, {L"=Northing", {northing}, ""}});
    const double degreesPerMetre = 1 / (kRadsPerDegree * kRadiusMetres);
    const double degreesPerMetreEast = degreesPerMetre / std::cos(latitude * kRadsPerDegree);
    const double back = InverseToleranceOf(grid, tolerance);
    results.push_back({name + "latitude", Number(inverse.Get(), L"Latitude"), latitude,
                       back * degreesPerMetre, kFlavourMetres * degreesPerMetre});
    results.push_back({name + "longitude", Number(inverse.Get(), L"Longitude"), longitude,
                       back * degreesPerMetreEast, kFlavourMetres * degreesPerMetreEast});
}

void AddShift(const std::vector<std::string>& row, std::vector<Result>& results) {
    ASSERT_EQ(8U, row.size());
    const std::string name =
        "shift " + row[0] + ' ' + row[1] + " at " + row[2] + ' ' + row[3] + ' ' + row[4] + ' ';
    const double height = std::stod(row[4]);
    const ComPtr<IDispatch> p = NewPosition();
    ExpectSteps(p.Get(), {{L"=Datum", {std::stoi(row[0])}, ""},
                          {L"=LatitudeRads", {std::stod(row[2])}, ""},
                          {L"=LongitudeRads", {std::stod(row[3])}, ""},
                          {L"SetAltitude", {1, height}, ""},
                          {L"=Datum", {std::stoi(row[1])}, ""}});
    // A few units in the last place of an angle, 1.4 nm each, or of a satellite's height.
    const double tolerance = height > 1e6 ? 2e-8 : 5e-9;
    const double latitude = std::stod(row[5]);
    const double north = tolerance / kRadiusMetres;
    const double east = north / std::cos(latitude);
    results.push_back(
        {name + "latitude", Number(p.Get(), L"LatitudeRads"), latitude, north, 2 * north});
    results.push_back(
        {name + "longitude", Number(p.Get(), L"LongitudeRads"), std::stod(row[6]), east, 2 * east});
    results.push_back({name + "height", Number(p.Get(), L"Altitude", {1}), std::stod(row[7]),
                       tolerance, 2 * tolerance});
}

// Computed once for all tests.
const std::vector<Result>& Results() {
    static const std::vector<Result> results = [] {
        std::vector<Result> made;
        for (const char* name : {"check_values.csv", "grids.csv"}) {
            for (const auto& row : ReadTable(name))
                AddGridPoint(row, made);
        }
        for (const auto& row : ReadTable("shifts.csv"))
            AddShift(row, made);
        return made;
    }();
    return results;
}

using GoldenPositionTest = AutomationTest;

TEST_F(GoldenPositionTest, AgreesWithOtherTools) {
    ASSERT_LE(4U * 1100 + 3 * 280, Results().size());
    for (const Result& result : Results())
        EXPECT_NEAR(result.expected, result.value, result.tolerance) << result.name;
}

TEST_F(GoldenPositionTest, WritesItsResults) {
    std::ofstream file(KAVREL_BUILD "/golden_position.txt", std::ios::binary);
    for (const Result& result : Results()) {
        file << result.name << '\t' << std::hex << std::bit_cast<std::uint64_t>(result.value)
             << '\t' << std::setprecision(17) << result.value << '\n';
    }
    file.close();
    EXPECT_TRUE(file.good());
}

// The 64-bit flavour's run of this test gives the reference, beside this flavour's build folder.
TEST_F(GoldenPositionTest, AgreesWithTheOtherFlavour) {
    std::ifstream file(KAVREL_BUILD "/../win64/golden_position.txt", std::ios::binary);
    if (!file) GTEST_SKIP() << "no results of the win64 flavour to compare with";
    std::map<std::string, double> reference;
    for (std::string line; std::getline(file, line);) {
        const size_t tab = line.find('\t');
        ASSERT_NE(std::string::npos, tab) << line;
        reference[line.substr(0, tab)] =
            std::bit_cast<double>(std::uint64_t{std::stoull(line.substr(tab + 1), nullptr, 16)});
    }
    int different = 0;
    double worst = 0;  // as a share of what is allowed
    for (const Result& result : Results()) {
        const auto found = reference.find(result.name);
        ASSERT_NE(reference.end(), found) << result.name << ": the reference is of another version";
        if (std::bit_cast<std::uint64_t>(found->second) ==
            std::bit_cast<std::uint64_t>(result.value)) {
            continue;
        }
        ++different;
        worst = std::max(worst, std::fabs(found->second - result.value) / result.flavourTolerance);
        EXPECT_NEAR(found->second, result.value, result.flavourTolerance) << result.name;
    }
    std::cout << different << " of " << Results().size()
              << " results differ from the win64 flavour in their bits, at most by " << worst
              << " of what is allowed\n";
    RecordProperty("different", different);
}

// Plain arithmetic, the same to the last bit everywhere. Worked out with Python's floats, in the
// order of the operations that the documentation gives.
TEST_F(GoldenPositionTest, ArithmeticIsExact) {
    struct Case {
        const wchar_t* put;
        Vars arguments;
        const wchar_t* get;
        double expected;
    };
    const Case cases[] = {
        {L"=Latitude", {1}, L"LatitudeRads", 0x1.1df46a2529d39p-6},
        {L"=Latitude", {45}, L"LatitudeRads", 0x1.921fb54442d18p-1},
        {L"=Latitude", {59.3}, L"LatitudeRads", 0x1.08f477266f27ap+0},
        {L"=Latitude", {59.3}, L"Latitude", 0x1.da66666666667p+5},
        {L"=Latitude", {-23.5}, L"LatitudeRads", -0x1.a3fefbe6956ecp-2},
        {L"=Latitude", {1e-9}, L"Latitude", 0x1.12e0be826d695p-30},
        {L"=Latitude", {89.99999999}, L"LatitudeRads", 0x1.921fb54382eaep+0},
        {L"SetLatitudeDMS", {10, 30, 15.5, L"N"}, L"LatitudeRads", 0x1.77783141d1b4dp-3},
        {L"SetLatitudeDMS", {59, 20, 12.345, L"S"}, L"LatitudeRads", -0x1.091e83dbfb676p+0},
        {L"SetLatitudeDMS", {89, 59, 59.999, L"N"}, L"LatitudeRads", 0x1.921fb52f703c4p+0},
        {L"SetLongitudeDMS", {0, 0, 0.001, L"W"}, L"LongitudeRads", -0x1.4d295322c9b41p-28},
        {L"=LongitudeRads", {4}, L"LongitudeRads", -0x1.243f6a8885a30p+1},
        {L"=LongitudeRads", {-4}, L"LongitudeRads", 0x1.243f6a8885a30p+1},
        {L"=LongitudeRads", {100}, L"LongitudeRads", -0x1.0fdaa22168bc0p-1},
        {L"=LongitudeRads", {-1e6}, L"LongitudeRads", 0x1.6e254d0e2d180p-2},
        {L"=LongitudeRads", {3.141592653589793}, L"LongitudeRads", 0x1.921fb54442d18p+1},
        {L"=Longitude", {200}, L"LongitudeRads", -0x1.657184ae74487p+1},
        {L"=Longitude", {-190.5}, L"LongitudeRads", 0x1.7aaaa88f36632p+1},
        {L"=Longitude", {540.5}, L"LongitudeRads", -0x1.9101c0da1da7cp+1},
    };
    for (const Case& test : cases) {
        const ComPtr<IDispatch> p = NewPosition();
        ExpectSteps(p.Get(), {{test.put, test.arguments, ""}});
        EXPECT_EQ(std::bit_cast<std::uint64_t>(test.expected),
                  std::bit_cast<std::uint64_t>(Number(p.Get(), test.get)))
            << Narrow(test.put) << ' ' << Describe(test.arguments[0]);
    }
    struct SecondsCase {
        double rads;
        int degrees;
        int minutes;
        double seconds;
    };
    for (const SecondsCase& test : {SecondsCase{0.5, 28, 38, 0x1.a3395810624ddp+5},
                                    {1.0, 57, 17, 0x1.6672b020c49bap+5},
                                    {-0.123456789, 7, 4, 0x1.8ca7ef9db22d1p+4},
                                    {1.5, 85, 56, 0x1.29ac083126e98p+5}}) {
        const ComPtr<IDispatch> p = NewPosition();
        Put(p.Get(), L"LatitudeRads", test.rads);
        Var out[4];
        Call(p.Get(), L"LatitudeDMS",
             {Var::To(out[0]), Var::To(out[1]), Var::To(out[2]), Var::To(out[3])});
        EXPECT_EQ(test.degrees, out[0].number());
        EXPECT_EQ(test.minutes, out[1].number());
        EXPECT_EQ(test.seconds, V_R8(out[2].get()));
    }
    const ComPtr<IDispatch> datum = CreateByName(L"KavrelCE.CustomDatum");
    for (const auto& [value, expected] : {std::pair{1.0, 1.0},
                                          {-2.5, -2.5},
                                          {0.1, 0x1.999999999999bp-4},
                                          {15.808, 0x1.f9db22d0e5604p+3}}) {
        Put(datum.Get(), L"RotY", value);
        EXPECT_EQ(expected, Number(datum.Get(), L"RotY"));
    }
}

}  // namespace

}  // namespace kavrel::tests
