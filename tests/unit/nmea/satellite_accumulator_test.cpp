#include "nmea/satellite_accumulator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "table.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

class Receiver {
  public:
    // True when a picture is ready.
    bool Feed(std::string_view body) {
        const Ref<NmeaSentence> sentence = MakeSentence(body);
        const bool isGsa = sentence->Type() == SentenceType::Gsa;
        const bool continuesRun = std::exchange(wasGsa_, isGsa);
        return isGsa ? accumulator_.AddGsa(*sentence, continuesRun)
                     : accumulator_.AddGsv(*sentence);
    }

    void Clear() {
        accumulator_.Clear();
        wasGsa_ = false;
    }

    auto picture() const { return accumulator_.picture(); }

    // "GP5 GP7*": talker and number, with a star when used; with their values "GP5:23/288/38".
    std::string Picture(bool hasValues = false) const {
        std::string text;
        for (const SatelliteValues& satellite : picture()) {
            if (!text.empty()) text += ' ';
            text += {satellite.talker.first, satellite.talker.second};
            text += std::to_string(satellite.prn) + (satellite.isUsedForFix ? "*" : "");
            if (!hasValues) continue;
            text += ":" + std::to_string(satellite.elevationDegrees) + "/" +
                    std::to_string(satellite.azimuthDegrees) + "/" +
                    std::to_string(satellite.snrDb);
        }
        return text;
    }

  private:
    SatelliteAccumulator accumulator_;
    bool wasGsa_ = false;
};

TEST(SatelliteAccumulator, ShowsWhatIsInView) {
    Receiver receiver;
    ForEachRow("nmea/satellites.csv", [&receiver](const Row& row) {
        if (row.Text(0).starts_with('=')) return receiver.Clear();
        EXPECT_EQ(receiver.Feed(row.Text(0)), row.Flag(1));
        const bool hasValues = row.Text(2).find(':') != std::string::npos;
        EXPECT_EQ(receiver.Picture(hasValues), row.Text(2));
    });
}

TEST(SatelliteAccumulator, TalkersSilentTogetherDropOut) {
    Receiver receiver;
    for (const char* talker : {"GL", "GA", "GB"})
        receiver.Feed(std::string(talker) + "GSV,1,1,01,5,1,1,1");
    for (std::uint32_t i = 0; i < SatelliteAccumulator::kMaxSilentGroups; ++i)
        receiver.Feed("GPGSV,1,1,01,05,1,1,1");
    EXPECT_EQ(receiver.Picture(), "GP5");
}

TEST(SatelliteAccumulator, GarbageIsBounded) {
    Receiver receiver;
    for (int i = 0; i < 400; ++i) {
        const std::string talker = {static_cast<char>('A' + i / 20),
                                    static_cast<char>('A' + i % 20)};
        receiver.Feed(talker + "GSV,1,1,01,05,1,1,1");
    }
    EXPECT_LE(receiver.picture().size(), SatelliteAccumulator::kMaxSources);
    // A run longer than the lists keeps its last sentences.
    receiver.Feed("GPGSV,1,1,02,05,1,1,1,99,1,1,1");
    for (int i = 1; i < 100; ++i)
        receiver.Feed("GPGSA,A,3," + std::to_string(i) + ",,,,,,,,,,,,1,1,1");
    EXPECT_THAT(receiver.Picture(), testing::HasSubstr("GP5 GP99*"));
    Receiver longGroup;
    for (int i = 1; i <= 100; ++i) {
        const std::string n = std::to_string(i);
        EXPECT_EQ(longGroup.Feed("GPGSV,100," + n + ",1,1" + n + ",1,1,1,2" + n + ",1,1,1"),
                  i == 100);
    }
    EXPECT_EQ(longGroup.picture().size(), SatelliteAccumulator::kMaxSatellitesPerSource);
}

}  // namespace
}  // namespace kavrel
