// Position as clients use it, late-bound.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/positions.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr double kSphereRadiusMetres = 6366710.0;
constexpr double kPi = 3.141592653589793;

using PositionTest = AutomationTest;

TEST_F(PositionTest, IsEmptyAtFirst) {
    ExpectSteps(NewPosition().Get(), {
                                         {L"ModifiedCount", {}, "I4 0"},
                                         {L"Datum", {}, "I2 1"},
                                         {L"Grid", {}, "I2 0"},
                                         {L"Zone", {}, "BSTR ''"},
                                         {L"Latitude", {}, "R8 0"},
                                         {L"LongitudeRads", {}, "R8 0"},
                                         {L"Easting", {}, "R8 0"},
                                         {L"Northing", {}, "R8 0"},
                                         {L"Altitude", {}, "R8 0"},
                                         {L"Altitude", {1}, "R8 0"},
                                         {L"LatitudeString", {}, "BSTR '0 0'0.00 N'"},
                                         {L"LatitudeString", {1}, "BSTR '0000.00001'"},
                                         {L"LongitudeString", {1}, "BSTR '00000.00001'"},
                                         {L"ModifiedCount", {}, "I4 0"},
                                     });
}

TEST_F(PositionTest, LatitudesAndLongitudes) {
    ExpectSteps(NewPosition().Get(), {
                                         {L"=Latitude", {59.5}, ""},
                                         {L"LatitudeRads", {}, "R8 1.03847"},
                                         {L"=LatitudeRads", {1.5707963267948966}, ""},
                                         {L"Latitude", {}, "R8 90"},
                                         {L"=LatitudeRads", {1.5707963267948968}, kLatitude},
                                         {L"=Latitude", {-90.001}, kLatitude},
                                         {L"Latitude", {}, "R8 90"},
                                         {L"ModifiedCount", {}, "I4 2"},
                                         {L"=LongitudeRads", {4}, ""},
                                         {L"LongitudeRads", {}, "R8 -2.28319"},
                                         {L"=LongitudeRads", {kPi}, ""},
                                         {L"LongitudeString", {0}, "BSTR '180 0'0.00 E'"},
                                         {L"=Longitude", {540.5}, ""},
                                         {L"Longitude", {}, "R8 -179.5"},
                                         {L"SetLatitudeDMS", {90, 30, 0, L"N"}, ""},
                                         {L"Latitude", {}, "R8 90.5"},
                                         {L"SetLatitudeDMS", {-1, 0, 0, L"N"}, kDegrees},
                                         {L"SetLatitudeDMS", {90.5, 0, 0, L"N"}, kDegrees},
                                         {L"SetLatitudeDMS", {10, 0, 0, L"s"}, ""},
                                         {L"Latitude", {}, "R8 10"},
                                         {L"SetLatitudeDMS", {L"10", L"30", 0, L"South"}, ""},
                                         {L"Latitude", {}, "R8 -10.5"},
                                         {L"SetLatitudeDMS", {}, ""},
                                         {L"Latitude", {}, "R8 0"},
                                         {L"SetLongitudeDMS", {200, 90, 0, L"W"}, ""},
                                         {L"Longitude", {}, "R8 158.5"},
                                         {L"SetAltitude", {0, 12.5}, ""},
                                         {L"SetAltitude", {L"1", 60}, ""},
                                         {L"Altitude", {0}, "R8 12.5"},
                                         {L"Altitude", {1}, "R8 60"},
                                         {L"Altitude", {2}, kInvalid},
                                         {L"ModifiedCount", {}, "I4 12"},
                                         {L"SetAltitude", {2, 5}, kInvalid},
                                         {L"ModifiedCount", {}, "I4 13"},
                                         {L"LatitudeString", {2}, kInvalid},
                                         {L"LongitudeString", {-1}, kInvalid},
                                     });
}

TEST_F(PositionTest, Texts) {
    struct Case {
        Vars latitude;
        const char* texts[4];  // latitude 0 and 1, longitude 0 and 1
    };
    const Case cases[] = {
        {{59, 20, 12.345, L"N"}, {"59 20'12.35 N", "5920.20576", "59 20'12.35 E", "05920.20576"}},
        {{5, 3, 0, L"S"}, {"5 3'0.00 S", "0503.00001", "5 3'0.00 E", "00503.00001"}},
        {{59, 59, 59.9996, L"N"}, {"60 0'0.00 N", "6000.00001", "60 0'0.00 E", "06000.00001"}},
        {{59, 9, 59.999, L"N"}, {"59 9'60.00 N", "5909.99999", "59 9'60.00 E", "05909.99999"}},
    };
    for (const Case& test : cases) {
        const ComPtr<IDispatch> p = NewPosition();
        Vars longitude = test.latitude;
        longitude[3] = L"E";
        const auto text = [](const char* value) { return "BSTR '" + std::string(value) + "'"; };
        ExpectSteps(p.Get(), {{L"SetLatitudeDMS", test.latitude, ""},
                              {L"SetLongitudeDMS", longitude, ""},
                              {L"LatitudeString", {0}, text(test.texts[0])},
                              {L"LatitudeString", {1}, text(test.texts[1])},
                              {L"LongitudeString", {0}, text(test.texts[2])},
                              {L"LongitudeString", {1}, text(test.texts[3])}});
    }
}

TEST_F(PositionTest, Zones) {
    ExpectSteps(PositionAt(52, 9, 1).Get(), {
                                                {L"Zone", {}, "BSTR '32U'"},
                                                {L"=Zone", {L"31U"}, ""},
                                                {L"Zone", {}, "BSTR '31U'"},
                                                {L"=Zone", {33}, ""},
                                                {L"Zone", {}, "BSTR '33U'"},
                                                {L"=Zone", {3.0}, ""},
                                                {L"Zone", {}, kOutside},
                                                {L"=Zone", {31.0}, ""},
                                                {L"Zone", {}, "BSTR '31U'"},
                                                {L"=Zone", {61}, kBadZone},
                                                {L"=Zone", {L"0"}, kBadZone},
                                                {L"=Zone", {L"U"}, kBadZone},
                                                {L"=Zone", {Var::Of(VT_NULL)}, kBadZone},
                                                {L"=Grid", {29}, ""},
                                                {L"=Zone", {3}, ""},
                                                {L"Zone", {}, "BSTR '3'"},
                                                {L"=Zone", {11}, kBadZone},
                                                {L"=Grid", {3}, ""},
                                                {L"=Zone", {3}, ""},
                                                {L"=Zone", {L"nonsense"}, ""},
                                                {L"Zone", {}, "BSTR ''"},
                                                {L"=Grid", {31}, ""},
                                                {L"=Zone", {100}, kBadZone},
                                                {L"=Grid", {53}, Refusal("Unknown grid!")},
                                                {L"=Grid", {-1}, Refusal("Unknown grid!")},
                                                {L"Grid", {}, "I2 31"},
                                            });
    ExpectSteps(PositionAt(0, 3, 1).Get(), {{L"Zone", {}, "BSTR '31N'"}});
    ExpectSteps(PositionAt(41, -82, 30).Get(),
                {{L"Easting", {}, Refusal("Zone must be specified for this grid")},
                 {L"=Zone", {L"3401"}, ""},
                 {L"Zone", {}, "BSTR '3401'"}});
    ExpectSteps(NewPosition().Get(),
                {{L"=Grid", {52}, Refusal("Set Position.CustomGrid instead!")},
                 {L"=Datum", {28}, Refusal("Set Position.CustomDatum instead!")},
                 {L"=Datum", {0}, Refusal("Unknown datum!")},
                 {L"=Datum", {29}, Refusal("Unknown datum!")},
                 {L"ModifiedCount", {}, "I4 0"}});
}

TEST_F(PositionTest, SidesFollowEachOther) {
    ExpectSteps(NewPosition().Get(), {
                                         {L"=Easting", {500000}, ""},
                                         {L"Latitude", {}, kNoGrid},
                                         {L"LongitudeString", {0}, kNoGrid},
                                         {L"Easting", {}, "R8 500000"},
                                         {L"Latitude", {}, kNoGrid},
                                         {L"=Latitude", {0}, ""},
                                         {L"Latitude", {}, "R8 0"},
                                         {L"Easting", {}, kNoGrid},
                                         {L"=Longitude", {9}, ""},
                                         {L"=Grid", {1}, ""},
                                         {L"Easting", {}, "R8 500000"},
                                         {L"=Easting", {400000}, ""},
                                         {L"Zone", {}, "BSTR '32N'"},
                                         {L"=Easting", {1e300}, ""},
                                         {L"Latitude", {}, kOutside},
                                         {L"Latitude", {}, kOutside},
                                     });
}

// Untouched, a position's datum is only renamed.
TEST_F(PositionTest, FirstUseTouches) {
    ExpectSteps(NewPosition().Get(), {{L"ModifiedCount", {}, "I4 0"},
                                      {L"=Datum", {5}, ""},
                                      {L"Latitude", {}, "R8 0"},
                                      {L"Altitude", {1}, "R8 0"},
                                      {L"=Datum", {5}, ""},
                                      {L"ModifiedCount", {}, "I4 1"}});
    const ComPtr<IDispatch> read = NewPosition();
    Get(read.Get(), L"Latitude");
    Put(read.Get(), L"Datum", 5);
    EXPECT_LT(0.0001, std::fabs(Number(read.Get(), L"Latitude")));
}

TEST_F(PositionTest, SameDatumAndGrid) {
    const ComPtr<IDispatch> other = PositionAt(52, 9, 1);
    const ComPtr<IDispatch> p = PositionAt(52, 2);
    const Var object = other.Get();
    const Var none = static_cast<IDispatch*>(nullptr);
    ExpectSteps(p.Get(), {
                             {L"IsSameDatum", {object}, "BOOL 1"},
                             {L"IsSameGrid", {object}, "BOOL 0"},
                             {L"IsSameGrid", {p.Get()}, "BOOL 0"},
                             {L"IsSameDatum", {none}, "BOOL 0"},
                             {L"IsSameGrid", {none}, "BOOL 0"},
                             {L"MakeSameGrid", {none}, ""},
                             {L"MakeSameDatum", {none}, ""},
                             {L"ModifiedCount", {}, "I4 2"},
                             {L"MakeSameGrid", {object}, ""},
                             {L"Zone", {}, "BSTR '32U'"},
                             {L"IsSameGrid", {object}, "BOOL 1"},
                             {L"Grid", {}, "I2 1"},
                         });
    Put(other.Get(), L"Datum", 3);
    ExpectSteps(p.Get(), {{L"IsSameDatum", {object}, "BOOL 0"},
                          {L"MakeSameDatum", {object}, ""},
                          {L"Datum", {}, "I2 3"},
                          {L"IsSameDatum", {object}, "BOOL 1"}});
}

TEST_F(PositionTest, CopyIsIndependent) {
    const ComPtr<IDispatch> p = PositionAt(52, 9, 1);
    Call(p.Get(), L"SetAltitude", {0, 12.5});
    const CallResult call = Call(p.Get(), L"Copy");
    ASSERT_EQ("DISPATCH object", Outcome(call));
    Put(p.Get(), L"Latitude", 1);
    ExpectSteps(call.value.object(), {{L"ModifiedCount", {}, "I4 0"},
                                      {L"Latitude", {}, "R8 52"},
                                      {L"Altitude", {0}, "R8 12.5"},
                                      {L"Zone", {}, "BSTR '32U'"},
                                      {L"=Latitude", {2}, ""}});
    ExpectSteps(p.Get(), {{L"Latitude", {}, "R8 1"}, {L"ModifiedCount", {}, "I4 5"}});
}

TEST_F(PositionTest, DistancesAndBearings) {
    struct Case {
        double from[2];
        double to[2];
        double radians;
        double bearing;
    };
    // By hand, from spherical trigonometry.
    const Case cases[] = {
        {{0, 0}, {0, 90}, kPi / 2, 90},   {{0, 0}, {0, -90}, kPi / 2, 270},
        {{10, 5}, {20, 5}, kPi / 18, 0},  {{20, 5}, {10, 5}, kPi / 18, 180},
        {{90, 0}, {0, 30}, kPi / 2, 180}, {{-90, 0}, {0, 30}, kPi / 2, 0},
        {{48, 11}, {48, 11}, 0, 0},       {{0, 179}, {0, -179}, kPi / 90, 90},
        {{60, 0}, {60, 180}, kPi / 3, 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(std::to_string(test.from[0]) + " to " + std::to_string(test.to[0]));
        const ComPtr<IDispatch> p = PositionAt(test.from[0], test.from[1]);
        const ComPtr<IDispatch> other = PositionAt(test.to[0], test.to[1]);
        EXPECT_NEAR(test.radians, Number(p.Get(), L"Distance", {other.Get(), 2}), 1e-12);
        EXPECT_NEAR(test.radians * kSphereRadiusMetres,
                    Number(p.Get(), L"Distance", {other.Get(), L"1"}), 1e-5);
        // The direction of north may come out just below 360.
        const double bearing = Number(p.Get(), L"Bearing", {other.Get(), 1});
        EXPECT_NEAR(0.0, std::remainder(bearing - test.bearing, 360.0), 1e-5);
        EXPECT_EQ(bearing, Number(p.Get(), L"Bearing", {other.Get(), 2}));
    }
}

TEST_F(PositionTest, DistancesInTheGrid) {
    const ComPtr<IDispatch> p = PositionAt(52, -1, 3);
    const ComPtr<IDispatch> other = PositionAt(52.1, -1, 1);
    const ComPtr<IDispatch> same = PositionAt(52.1, -1, 3);
    const Var object = other.Get();
    const double metres = Number(p.Get(), L"Distance", {object, 3});
    EXPECT_EQ(metres, Number(p.Get(), L"Distance", {same.Get(), 3}));
    EXPECT_NEAR(11121.8, metres, 10.0);  // a tenth of a degree of latitude, about 111.26 km
    const double east = Number(same.Get(), L"Easting") - Number(p.Get(), L"Easting");
    const double north = Number(same.Get(), L"Northing") - Number(p.Get(), L"Northing");
    EXPECT_NEAR(std::atan2(east, north) * 180 / kPi + 360, Number(p.Get(), L"Bearing", {object, 3}),
                1e-9);
    ExpectSteps(other.Get(), {{L"Grid", {}, "I2 1"}, {L"ModifiedCount", {}, "I4 3"}});
}

TEST_F(PositionTest, DistancesAcrossDatums) {
    const ComPtr<IDispatch> p = PositionAt(52, 0);
    const ComPtr<IDispatch> british = NewPosition();
    Put(british.Get(), L"Datum", 3);
    Put(british.Get(), L"Latitude", 52);
    const ComPtr<IDispatch> shifted = Call(british.Get(), L"Copy").value.object();
    Put(shifted.Get(), L"Datum", 1);
    const double metres = Number(p.Get(), L"Distance", {british.Get(), 1});
    EXPECT_EQ(Number(p.Get(), L"Distance", {shifted.Get(), 1}), metres);
    EXPECT_LT(50.0, metres);
    // The bearing takes the coordinates as they are: the same as this position's.
    EXPECT_NE(Number(p.Get(), L"Bearing", {shifted.Get(), 1}),
              Number(p.Get(), L"Bearing", {british.Get(), 1}));
    ExpectSteps(british.Get(), {{L"Datum", {}, "I2 3"}, {L"Latitude", {}, "R8 52"}});
}

TEST_F(PositionTest, RelationsRefuse) {
    const ComPtr<IDispatch> p = PositionAt(52, 9);
    const ComPtr<IDispatch> other = PositionAt(53, 9);
    const Var object = other.Get();
    const Var none = static_cast<IDispatch*>(nullptr);
    const std::string distanceMethod = Refusal("Unknown method to calculate distance.");
    const std::string bearingMethod = Refusal("Unknown method to calculate bearing.");
    ExpectSteps(p.Get(), {
                             {L"Distance", {object, 4}, distanceMethod},
                             {L"Distance", {object}, distanceMethod},
                             {L"Bearing", {object, 0}, bearingMethod},
                             {L"Distance", {none, 1}, kNoPosition},
                             {L"Distance", {Var::Of(VT_NULL), 4}, kNoPosition},
                             {L"Bearing", {none, 9}, kNoPosition},
                             {L"Distance", {object, 3}, kNoGrid},
                             {L"Bearing", {object, 3}, kNoGrid},
                             {L"Move", {1, 1, 4}, Refusal("Unknown method.")},
                             {L"Move", {1, 1, 3}, kNoGrid},
                             {L"Move", {}, Refusal("Unknown method.")},
                             {L"Latitude", {}, "R8 52"},
                             {L"ModifiedCount", {}, "I4 5"},
                         });
    // A failing member has written its result, which is 0.
    ComPtr<IPosition> dual;
    ASSERT_EQ(S_OK, p.As(&dual));
    Var result = 5;
    EXPECT_EQ(static_cast<HRESULT>(0x80042713),
              dual->Distance(*object.get(), *Var(4).get(), result.get()));
    EXPECT_EQ("R8 0", Describe(result));
    const std::optional<ErrorReport> error = TakeErrorObject();
    ASSERT_TRUE(error.has_value());
    EXPECT_TRUE(error->interfaceId == IID_IPosition);
}

TEST_F(PositionTest, Moves) {
    const ComPtr<IDispatch> p = PositionAt(0, 0, 1);
    EXPECT_EQ("", Outcome(Call(p.Get(), L"Move", {1000, 90, 1})));
    EXPECT_NEAR(1000 / kSphereRadiusMetres, Number(p.Get(), L"LongitudeRads"), 1e-18);
    EXPECT_EQ("I4 6", Outcome(Get(p.Get(), L"ModifiedCount")));
    EXPECT_EQ("", Outcome(Call(p.Get(), L"Move", {kPi / 2, 0, 2})));
    EXPECT_NEAR(90, Number(p.Get(), L"Latitude"), 1e-6);

    const ComPtr<IDispatch> q = PositionAt(52, 9, 1);
    const double easting = Number(q.Get(), L"Easting");
    EXPECT_EQ("", Outcome(Call(q.Get(), L"Move", {100, 90, 3})));
    EXPECT_NEAR(easting + 100, Number(q.Get(), L"Easting"), 1e-6);
    EXPECT_EQ("I4 6", Outcome(Get(q.Get(), L"ModifiedCount")));
    EXPECT_NEAR(9.001456, Number(q.Get(), L"Longitude"), 1e-5);  // 100 m at 52 degrees north
}

}  // namespace

}  // namespace kavrel::tests
