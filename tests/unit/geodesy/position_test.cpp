// Positions driven by tests/data/geodesy/position.csv, which says how its rows are written.

#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <map>
#include <sstream>
#include <tuple>
#include <type_traits>

#include "support.h"

namespace kavrel::test {
namespace {

using Words = std::vector<std::string>;

std::string Shown(const std::string& text) {
    return text;
}

std::string Shown(double number) {
    std::array<char, 400> text;
    const auto end =
        std::to_chars(text.begin(), text.end(), number + 0.0, std::chars_format::fixed);
    return {text.data(), end.ptr};
}

std::string Shown(const DmsWithHemisphere& parts) {
    return Shown(parts.degrees) + " " + Shown(parts.minutes) + " " +
           Shown(std::round(parts.seconds * 1e9) / 1e9) + " " + parts.hemisphere;
}

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
    void Start() {
        for (Ref<Position>& position : positions_)
            position = MakeRef<Position>();
    }

    // The result as a text.
    std::string Call(const std::string& text) {
        std::istringstream stream(text);
        Words words;
        for (std::string word; stream >> word;)
            words.push_back(word == "''" ? "" : word);
        const std::string name = words[0];
        words.erase(words.begin());
        return kMembers.at(name.substr(2))(*this, At(name), words);
    }

    Ref<Position>& At(const std::string& name) { return positions_.at(name[0] - 'a'); }

  private:
    using Member = std::function<std::string(Script&, Ref<Position>&, const Words&)>;

    template <typename T>
    T Argument(const std::string& word) {
        if constexpr (std::is_same_v<T, Position*>) {
            return word == "null" ? nullptr : At(word).get();
        } else if constexpr (std::is_same_v<T, Ref<CustomDatum>>) {
            return word == "null" ? T() : Osgb36();
        } else if constexpr (std::is_same_v<T, Ref<CustomGrid>>) {
            return word == "null" ? T() : BritishGrid();
        } else if constexpr (std::is_arithmetic_v<T>) {
            return static_cast<T>(std::stod(word));
        } else {
            return word;
        }
    }

    template <typename Class, typename R, typename... A>
    static Member Bind(R (Class::*member)(A...)) {
        return [member](Script& script, Ref<Position>& p, const Words& words) -> std::string {
            EXPECT_EQ(words.size(), sizeof...(A));
            std::size_t at = 0;
            [[maybe_unused]] const auto next = [&]() -> const std::string& {
                return words.at(at++);
            };
            std::tuple arguments{script.Argument<std::decay_t<A>>(next())...};
            const auto call = [&](const auto&... a) { return ((*p).*member)(a...); };
            if constexpr (!std::is_void_v<R>) return Shown(std::apply(call, arguments));
            std::apply(call, arguments);
            return {};
        };
    }

    static std::string MakeAt(Script&, Ref<Position>& p, const Words& words) {
        p = PositionAt(std::stod(words[0]), std::stod(words[1]),
                       static_cast<DatumId>(std::stoi(words[2])));
        return {};
    }
    static std::string MakeFromText(Script&, Ref<Position>& p, const Words& words) {
        p = MakeRef<Position>(
            ReceiverPosition{words[0], words[1], words[2], words[3], words[4], words[5]},
            static_cast<DatumId>(std::stoi(words[6])));
        return {};
    }
    static std::string MakeCopyOf(Script& script, Ref<Position>& p, const Words& words) {
        p = script.At(words[0])->Copy();
        return {};
    }
    static std::string CopyAltitudes(Script& script, Ref<Position>& p, const Words& words) {
        p->CopyAltitudes(*script.At(words[0]));
        return {};
    }
    // Unlike the other members it leaves an error as it is, which its row would have to repeat.
    static std::string ModifiedCount(Script&, Ref<Position>& p, const Words&) {
        p->error().Clear();
        return Shown(p->ModifiedCount());
    }

    static const std::map<std::string, Member> kMembers;

    std::array<Ref<Position>, 3> positions_;
};

const std::map<std::string, Script::Member> Script::kMembers = {
    {"At", MakeAt},
    {"FromText", MakeFromText},
    {"CopyOf", MakeCopyOf},
    {"CopyAltitudes", CopyAltitudes},
    {"ModifiedCount", ModifiedCount},
    {"LatitudeDMS", Bind(&Position::LatitudeDMS)},
    {"LongitudeDMS", Bind(&Position::LongitudeDMS)},
    {"SetLatitudeDMS", Bind(&Position::SetLatitudeDMS)},
    {"SetLongitudeDMS", Bind(&Position::SetLongitudeDMS)},
    {"LatitudeString", Bind(&Position::LatitudeString)},
    {"LongitudeString", Bind(&Position::LongitudeString)},
    {"Altitude", Bind(&Position::Altitude)},
    {"SetAltitude", Bind(&Position::SetAltitude)},
    {"LatitudeRads", Bind(&Position::LatitudeRads)},
    {"LongitudeRads", Bind(&Position::LongitudeRads)},
    {"PutLatitudeRads", Bind(&Position::PutLatitudeRads)},
    {"PutLongitudeRads", Bind(&Position::PutLongitudeRads)},
    {"Latitude", Bind(&Position::Latitude)},
    {"Longitude", Bind(&Position::Longitude)},
    {"PutLatitude", Bind(&Position::PutLatitude)},
    {"PutLongitude", Bind(&Position::PutLongitude)},
    {"Datum", Bind(&Position::Datum)},
    {"PutDatum", Bind(&Position::PutDatum)},
    {"PutCustomDatum", Bind(&Position::PutCustomDatum)},
    {"Grid", Bind(&Position::Grid)},
    {"PutGrid", Bind(&Position::PutGrid)},
    {"PutCustomGrid", Bind(&Position::PutCustomGrid)},
    {"Easting", Bind(&Position::Easting)},
    {"Northing", Bind(&Position::Northing)},
    {"PutEasting", Bind(&Position::PutEasting)},
    {"PutNorthing", Bind(&Position::PutNorthing)},
    {"Zone", Bind(&Position::Zone)},
    {"Distance", Bind(&Position::Distance)},
    {"Bearing", Bind(&Position::Bearing)},
    {"Move", Bind(&Position::Move)},
    {"IsSameDatum", Bind(&Position::IsSameDatum)},
    {"IsSameGrid", Bind(&Position::IsSameGrid)},
    {"MakeSameDatum", Bind(&Position::MakeSameDatum)},
    {"MakeSameGrid", Bind(&Position::MakeSameGrid)},
    {"PutZone", Bind<Position, void, std::int32_t>(&Position::PutZone)},
    {"PutZoneText", Bind<Position, void, std::string_view>(&Position::PutZone)},
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
