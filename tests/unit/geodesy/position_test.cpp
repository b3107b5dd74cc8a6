// Positions driven by tests/data/geodesy/position.csv, which says how its rows are written.

#include <array>
#include <cmath>

#include "support.h"
#include "unit/dialogue.h"

namespace kavrel::test {
namespace {

// The expectation may be a relation, "<", ">" or "!", to a number.
void Compare(const std::string& result, std::string expected, const std::string& tolerance) {
    const char relation = expected[0];
    if (std::string_view("<>!").find(relation) != std::string_view::npos) expected.erase(0, 1);
    const double number = std::strtod(result.c_str(), nullptr);
    const double wanted = std::strtod(expected.c_str(), nullptr);
    const double distance = std::fabs(number - wanted);
    if (relation == '<') {
        EXPECT_LT(number, wanted);
    } else if (relation == '>') {
        EXPECT_GT(number, wanted);
    } else if (relation == '!') {
        EXPECT_TRUE(tolerance.empty() ? result != expected : distance > std::stod(tolerance));
    } else if (tolerance.empty()) {
        EXPECT_EQ(result, expected);
    } else {
        EXPECT_LE(distance, std::stod(tolerance)) << result;
    }
}

class Script {
  public:
    Script() {
        AddMakers();
        AddCoordinates();
        AddDatumAndGrid();
        AddRelations();
    }

    void Start() {
        for (Ref<Position>& position : positions_)
            position = MakeRef<Position>();
    }

    // The result as a text.
    std::string Call(const std::string& text) {
        current_ = &At(text);
        return calls_.Call(text.substr(2));
    }

    Ref<Position>& At(const std::string& name) { return positions_.at(name[0] - 'a'); }

  private:
    void AddMakers() {
        calls_.Add("At", [this](double latitude, double longitude, DatumId datum) {
            *current_ = PositionAt(latitude, longitude, datum);
        });
        calls_.Add("FromText",
                   [this](const std::string& latitude, const std::string& longitude,
                          const std::string& latitudeHemisphere,
                          const std::string& longitudeHemisphere, const std::string& altitude,
                          const std::string& geoidalSeparation, DatumId datum) {
                       *current_ = MakeRef<Position>(
                           ReceiverPosition{latitude, longitude, latitudeHemisphere,
                                            longitudeHemisphere, altitude, geoidalSeparation},
                           datum);
                   });
        calls_.Add("CopyOf",
                   [this](const std::string& other) { *current_ = Other(other)->Copy(); });
    }

    void AddCoordinates() {
        calls_.Add("LatitudeDMS", [this] { return Shown(Current().LatitudeDMS()); });
        calls_.Add("LongitudeDMS", [this] { return Shown(Current().LongitudeDMS()); });
        calls_.Add("SetLatitudeDMS", &Position::SetLatitudeDMS);
        calls_.Add("SetLongitudeDMS", &Position::SetLongitudeDMS);
        calls_.Add("LatitudeString", &Position::LatitudeString);
        calls_.Add("LongitudeString", &Position::LongitudeString);
        calls_.Add("Altitude", &Position::Altitude);
        calls_.Add("SetAltitude", &Position::SetAltitude);
        calls_.Add("LatitudeRads", &Position::LatitudeRads);
        calls_.Add("LongitudeRads", &Position::LongitudeRads);
        calls_.Add("PutLatitudeRads", &Position::PutLatitudeRads);
        calls_.Add("PutLongitudeRads", &Position::PutLongitudeRads);
        calls_.Add("Latitude", &Position::Latitude);
        calls_.Add("Longitude", &Position::Longitude);
        calls_.Add("PutLatitude", &Position::PutLatitude);
        calls_.Add("PutLongitude", &Position::PutLongitude);
        calls_.Add("Easting", &Position::Easting);
        calls_.Add("Northing", &Position::Northing);
        calls_.Add("PutEasting", &Position::PutEasting);
        calls_.Add("PutNorthing", &Position::PutNorthing);
        calls_.Add("Move", &Position::Move);
        // Unlike the other members it leaves an error as it is, which its row would have to repeat.
        calls_.Add("ModifiedCount", [this] {
            Current().error().Clear();
            return Current().ModifiedCount();
        });
    }

    void AddDatumAndGrid() {
        calls_.Add("Datum", &Position::Datum);
        calls_.Add("PutDatum", &Position::PutDatum);
        calls_.Add("PutCustomDatum", [this](const std::string& datum) {
            Current().PutCustomDatum(datum == "null" ? nullptr : Osgb36());
        });
        calls_.Add("Grid", &Position::Grid);
        calls_.Add("PutGrid", &Position::PutGrid);
        calls_.Add("PutCustomGrid", [this](const std::string& grid) {
            Current().PutCustomGrid(grid == "null" ? nullptr : BritishGrid());
        });
        calls_.Add("Zone", &Position::Zone);
        calls_.Add("PutZone", [this](std::int32_t zone) { Current().PutZone(zone); });
        calls_.Add("PutZoneText", [this](const std::string& zone) { Current().PutZone(zone); });
    }

    void AddRelations() {
        AddRelation("Distance", &Position::Distance);
        AddRelation("Bearing", &Position::Bearing);
        AddRelation("IsSameDatum", &Position::IsSameDatum);
        AddRelation("IsSameGrid", &Position::IsSameGrid);
        AddRelation("MakeSameDatum", &Position::MakeSameDatum);
        AddRelation("MakeSameGrid", &Position::MakeSameGrid);
        calls_.Add("CopyAltitudes",
                   [this](const std::string& other) { Current().CopyAltitudes(*Other(other)); });
    }

    template <typename Result, typename... More>
    void AddRelation(const std::string& name, Result (Position::*member)(Position*, More...)) {
        calls_.Add(name, [this, member](const std::string& other, More... more) {
            return (Current().*member)(Other(other), more...);
        });
    }

    Position& Current() { return **current_; }
    Position* Other(const std::string& name) { return name == "null" ? nullptr : At(name).get(); }

    static std::string Shown(const DmsWithHemisphere& parts) {
        return std::to_string(parts.degrees) + " " + std::to_string(parts.minutes) + " " +
               TextOfNumber(std::round(parts.seconds * 1e9) / 1e9) + " " + parts.hemisphere;
    }

    std::array<Ref<Position>, 3> positions_;
    Ref<Position>* current_ = nullptr;
    Dialogue<Position> calls_{[this]() -> Position& { return Current(); }};
};

TEST(Position, DoesWhatTheScriptSays) {
    Script script;
    ForEachRow("geodesy/position.csv", [&script](const Row& row) {
        if (row.Text(0).starts_with('=')) return script.Start();
        const std::string result = script.Call(row.Text(0));
        Position& position = *script.At(row.Text(0));
        EXPECT_EQ(ErrorOf(position), row.Text(2));
        EXPECT_EQ(position.error().code(), row.Text(2).empty() ? kNoError : 10003u);
        std::string expected = row.Text(1);
        const std::size_t other = expected.find('=');
        if (other < 2)
            expected.replace(other, expected.npos, script.Call(expected.substr(other + 1)));
        if (expected.empty()) return;
        Compare(result, expected == "''" ? "" : expected, row.Text(3));
    });
}

}  // namespace
}  // namespace kavrel::test
