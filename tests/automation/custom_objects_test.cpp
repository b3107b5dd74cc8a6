// CustomDatum and CustomGrid: their values, and what positions make of them.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/positions.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr double kRadsPerDegree = 0.017453292519943295;

ComPtr<IDispatch> NewDatum() {
    return CreateDirectly(CLSID_CustomDatum);
}
ComPtr<IDispatch> NewGrid() {
    return CreateDirectly(CLSID_CustomGrid);
}

void PutAll(IDispatch* object, const std::vector<std::pair<const wchar_t*, Var>>& values) {
    for (const auto& [name, value] : values)
        EXPECT_EQ("", Outcome(Put(object, name, value))) << Narrow(name);
}

// The values of datum 3 and of grid 3, as the tables of the documentation have them.
ComPtr<IDispatch> BritishDatum() {
    ComPtr<IDispatch> datum = NewDatum();
    PutAll(datum.Get(), {{L"SemiMajorAxis", 6377563.396},
                         {L"E2", -0.00667054},
                         {L"DeltaX", 375},
                         {L"DeltaY", L"-111"},
                         {L"DeltaZ", 431.0}});
    return datum;
}
ComPtr<IDispatch> BritishGrid() {
    ComPtr<IDispatch> grid = NewGrid();
    PutAll(grid.Get(), {{L"Datum", 3},
                        {L"Algorithm", 3},
                        {L"FalseEasting", 400000},
                        {L"FalseNorthing", -100000},
                        {L"LongitudeOfOrigin", -2 * kRadsPerDegree},
                        {L"LatitudeOfOrigin", 49 * kRadsPerDegree},
                        {L"ScaleFactor", 0.9996012717}});
    return grid;
}

using CustomObjectTest = AutomationTest;

TEST_F(CustomObjectTest, DatumKeepsWhatItIsGiven) {
    const wchar_t* const names[] = {L"SemiMajorAxis", L"E2",   L"DeltaX", L"DeltaY",     L"DeltaZ",
                                    L"RotX",          L"RotY", L"RotZ",   L"ScaleFactor"};
    const ComPtr<IDispatch> datum = NewDatum();
    double value = 0;
    for (const wchar_t* name : names) {
        ExpectSteps(datum.Get(), {{name, {}, "R8 0"}});
        PutAll(datum.Get(), {{name, value += 1.5}});
    }
    value = 0;
    for (const wchar_t* name : names)
        EXPECT_NEAR(value += 1.5, Number(datum.Get(), name), 1e-14) << Narrow(name);
    PutAll(datum.Get(), {{L"E2", -0.0067}, {L"DeltaX", -1}, {L"ScaleFactor", L"nothing"}});
    ExpectSteps(datum.Get(),
                {{L"E2", {}, "R8 0.0067"}, {L"DeltaX", {}, "R8 -1"}, {L"ScaleFactor", {}, "R8 0"}});
}

TEST_F(CustomObjectTest, GridKeepsWhatItIsGiven) {
    const ComPtr<IDispatch> grid = NewGrid();
    ExpectSteps(grid.Get(), {{L"Datum", {}, "I2 0"},
                             {L"CustomDatum", {}, "DISPATCH null"},
                             {L"Algorithm", {}, "I2 0"},
                             {L"ScaleFactor", {}, "R8 0"},
                             {L"=Datum", {L"29"}, ""},
                             {L"Datum", {}, "I2 29"},
                             {L"=LatitudeSP1", {0.5}, ""},
                             {L"=LatitudeSP2", {0.25}, ""},
                             {L"LatitudeSP1", {}, "R8 0.5"},
                             {L"LatitudeSP2", {}, "R8 0.25"}});
    const ComPtr<IDispatch> datum = NewDatum();
    const std::string source = " (CustomGrid Class)";
    const std::string noObject = "80004002 Parameter not a valid object!" + source;
    const std::string null = "80042713 CustomDatum may not be null." + source;
    ExpectSteps(grid.Get(), {{L"&CustomDatum", {grid.Get()}, noObject},
                             {L"&CustomDatum", {5}, noObject},
                             {L"&CustomDatum", {Var()}, noObject},
                             {L"&CustomDatum", {Var::Of(VT_NULL)}, null},
                             {L"&CustomDatum", {static_cast<IDispatch*>(nullptr)}, null},
                             {L"Datum", {}, "I2 29"},
                             {L"&CustomDatum", {datum.Get()}, ""},
                             {L"Datum", {}, "I2 28"}});
    // What is read is another object for the same datum.
    const Var read = Get(grid.Get(), L"CustomDatum").value;
    PutAll(datum.Get(), {{L"DeltaX", 12}});
    ExpectSteps(read.object(), {{L"DeltaX", {}, "R8 12"}, {L"=DeltaX", {13}, ""}});
    ExpectSteps(datum.Get(), {{L"DeltaX", {}, "R8 13"}});
}

TEST_F(CustomObjectTest, PositionOnACustomDatum) {
    const ComPtr<IDispatch> datum = BritishDatum();
    const ComPtr<IDispatch> equal = BritishDatum();
    const ComPtr<IDispatch> p = PositionAt(52, 0);
    const ComPtr<IDispatch> british = PositionAt(52, 0);
    ExpectSteps(p.Get(), {{L"&CustomDatum", {datum.Get()}, ""}, {L"Datum", {}, "I2 28"}});
    Put(british.Get(), L"Datum", 3);
    for (const wchar_t* name : {L"LatitudeRads", L"LongitudeRads"})
        EXPECT_EQ(Number(british.Get(), name), Number(p.Get(), name));
    EXPECT_EQ(Number(british.Get(), L"Altitude", {1}), Number(p.Get(), L"Altitude", {1}));

    // Equal values are the same datum, but a number is not a custom one.
    const ComPtr<IDispatch> other = PositionAt(52, 0);
    ExpectSteps(other.Get(), {{L"&CustomDatum", {equal.Get()}, ""},
                              {L"IsSameDatum", {p.Get()}, "BOOL 1"},
                              {L"IsSameDatum", {british.Get()}, "BOOL 0"},
                              {L"&CustomDatum", {datum.Get()}, ""},
                              {L"ModifiedCount", {}, "I4 3"},
                              {L"MakeSameDatum", {british.Get()}, ""},
                              {L"Datum", {}, "I2 3"},
                              {L"MakeSameDatum", {p.Get()}, ""},
                              {L"Datum", {}, "I2 28"}});
    // The object is shared: a later change is seen, but moves nothing that is stored.
    const double latitude = Number(p.Get(), L"Latitude");
    PutAll(datum.Get(), {{L"DeltaX", 0}});
    EXPECT_EQ(latitude, Number(p.Get(), L"Latitude"));
    const ComPtr<IDispatch> third = PositionAt(0, 0);
    ExpectSteps(third.Get(),
                {{L"&CustomDatum", {equal.Get()}, ""}, {L"IsSameDatum", {p.Get()}, "BOOL 0"}});
}

TEST_F(CustomObjectTest, PositionInACustomGrid) {
    const ComPtr<IDispatch> grid = BritishGrid();
    const ComPtr<IDispatch> p = PositionAt(52.5, -1);
    const ComPtr<IDispatch> british = PositionAt(52.5, -1, 3);
    ExpectSteps(p.Get(), {{L"&CustomGrid", {grid.Get()}, ""},
                          {L"Grid", {}, "I2 52"},
                          {L"Zone", {}, "BSTR ''"},
                          {L"ModifiedCount", {}, "I4 3"},
                          {L"&CustomGrid", {BritishGrid().Get()}, ""},
                          {L"ModifiedCount", {}, "I4 3"},
                          {L"IsSameGrid", {british.Get()}, "BOOL 0"}});
    for (const wchar_t* name : {L"Easting", L"Northing"})
        EXPECT_NEAR(Number(british.Get(), name), Number(p.Get(), name), 1e-6);

    const Var copy = Call(p.Get(), L"Copy").value;
    ExpectSteps(copy.object(), {{L"IsSameGrid", {p.Get()}, "BOOL 1"}});
    Put(p.Get(), L"Easting", 400000);
    EXPECT_NEAR(-2.0, Number(p.Get(), L"Longitude"), 0.01);

    PutAll(grid.Get(), {{L"Algorithm", 4}});
    ExpectSteps(p.Get(), {{L"=Latitude", {52}, ""}, {L"Easting", {}, Refusal("Unknown grid!")}});
    PutAll(grid.Get(), {{L"Algorithm", 3}, {L"Datum", 0}});
    ExpectSteps(p.Get(), {{L"Easting", {}, Refusal("Unknown datum!")}});
    ExpectSteps(grid.Get(), {{L"&CustomDatum", {BritishDatum().Get()}, ""}});
    EXPECT_NEAR(400000, Number(p.Get(), L"Easting"), 100);
}

TEST_F(CustomObjectTest, OddValuesDoNoHarm) {
    const ComPtr<IDispatch> datum = NewDatum();  // all 0: no ellipsoid at all
    const ComPtr<IDispatch> p = PositionAt(52, 9);
    ExpectSteps(p.Get(), {{L"&CustomDatum", {datum.Get()}, ""}});
    EXPECT_GE(14U, Call(p.Get(), L"LatitudeString", {0}).value.text().size());
    PutAll(datum.Get(), {{L"SemiMajorAxis", 6378137}, {L"E2", 2}, {L"RotX", 1e300}});
    ExpectSteps(p.Get(), {{L"=Datum", {1}, ""}, {L"=Grid", {1}, ""}});
    RunStep(p.Get(), L"Easting", {});
    EXPECT_GE(14U, Call(p.Get(), L"LongitudeString", {1}).value.text().size());
}

// Changed by one thread while another computes with them.
TEST_F(CustomObjectTest, ChangedDuringUse) {
    const ComPtr<IDispatch> grid = BritishGrid();
    const ComPtr<IDispatch> p = PositionAt(52.5, -1);
    ExpectSteps(p.Get(), {{L"&CustomGrid", {grid.Get()}, ""}});
    const double easting = Number(p.Get(), L"Easting");
    std::thread changer([&] {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        for (int i = 0; i < 2000; ++i)
            Put(grid.Get(), L"FalseEasting", 400000 + 1000 * (i % 2));
        CoUninitialize();
    });
    for (int i = 0; i < 2000; ++i) {
        Put(p.Get(), L"Latitude", 52.5);
        const double now = Number(p.Get(), L"Easting");
        ASSERT_TRUE(std::abs(now - easting) < 1e-6 || std::abs(now - easting - 1000) < 1e-6) << now;
    }
    changer.join();
}

}  // namespace

}  // namespace kavrel::tests
