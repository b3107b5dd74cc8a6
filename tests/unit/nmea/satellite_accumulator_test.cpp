#include "nmea/satellite_accumulator.h"

#include <gtest/gtest.h>

#include <string>

#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

class SatelliteAccumulatorTest : public testing::Test {
  protected:
    // True when a picture is ready.
    bool Feed(std::string_view body) {
        const auto sentence = MakeRef<NmeaSentence>();
        sentence->SetText(Sentence(body));
        const bool isGsa = sentence->Type() == SentenceType::Gsa;
        const bool isReady =
            isGsa ? accumulator_.AddGsa(*sentence, wasGsa_) : accumulator_.AddGsv(*sentence);
        wasGsa_ = isGsa;
        return isReady;
    }

    // "GP05 GP07*": talker and number, with a star when used.
    std::string Picture() const {
        std::string text;
        for (const SatelliteValues& satellite : accumulator_.picture()) {
            if (!text.empty()) text += ' ';
            text += {satellite.talker.first, satellite.talker.second};
            text += std::to_string(satellite.prn);
            if (satellite.isUsedForFix) text += '*';
        }
        return text;
    }

    const SatelliteValues& Item(std::size_t index) const { return accumulator_.picture()[index]; }

    SatelliteAccumulator accumulator_;
    bool wasGsa_ = false;
};

TEST_F(SatelliteAccumulatorTest, IsReadyWithTheLastSentence) {
    EXPECT_FALSE(Feed("GPGSV,2,1,05,02,61,103,44,05,23,288,38,07,47,210,42,09,15,061,31"));
    EXPECT_EQ(Picture(), "");
    EXPECT_TRUE(Feed("GPGSV,2,2,05,17,03,340,"));
    EXPECT_EQ(Picture(), "GP2 GP5 GP7 GP9 GP17");
    EXPECT_EQ(Item(1).elevationDegrees, 23);
    EXPECT_EQ(Item(1).azimuthDegrees, 288);
    EXPECT_EQ(Item(1).snrDb, 38);
    EXPECT_EQ(Item(4).snrDb, 0);
}

TEST_F(SatelliteAccumulatorTest, DropsWhatIsOutOfOrder) {
    for (const char* body :
         {"GPGSV,3,2,05,05,1,1,1", "GPGSV,3,3,05,06,1,1,1",                           // no first
          "GPGSV,3,1,05,05,1,1,1", "GPGSV,3,3,05,06,1,1,1",                           // one missing
          "GPGSV,3,1,05,05,1,1,1", "GPGSV,2,2,05,06,1,1,1",                           // other count
          "GPGSV,2,1,05,05,1,1,1", "GPGSV,3,2,05,06,1,1,1", "GPGSV,2,2,05,06,1,1,1",  // dropped
          "GPGSV,0,1,00", "GPGSV,1,2,00", "GPGSV", "GPGSV,,,", "GPGSV,-1,-1"}) {
        EXPECT_FALSE(Feed(body)) << body;
    }
    EXPECT_EQ(Picture(), "");
    // A first one starts afresh, and one of another talker between does not matter.
    EXPECT_FALSE(Feed("GPGSV,2,1,05,05,1,1,1"));
    EXPECT_FALSE(Feed("GPGSV,2,1,05,06,1,1,1"));
    EXPECT_FALSE(Feed("GLGSV,2,1,05,66,1,1,1"));
    EXPECT_TRUE(Feed("GPGSV,2,2,05,07,1,1,1"));
    EXPECT_EQ(Picture(), "GP6 GP7");
    EXPECT_TRUE(Feed("GLGSV,2,2,05,67,1,1,1"));
    EXPECT_EQ(Picture(), "GP6 GP7 GL66 GL67");
    EXPECT_TRUE(Feed("GPGSV,1,1,00"));
    EXPECT_EQ(Picture(), "GL66 GL67");
}

TEST_F(SatelliteAccumulatorTest, SkipsEmptyAndUpdatesRepeated) {
    EXPECT_TRUE(Feed("GPGSV,1,1,05,,1,1,1,0,2,2,2,05,3,3,3,05,4,5,6"));
    EXPECT_EQ(Picture(), "GP5");
    EXPECT_EQ(Item(0).elevationDegrees, 4);
    EXPECT_EQ(Item(0).snrDb, 6);
    // A sentence cut short within its last satellite.
    EXPECT_TRUE(Feed("GPGSV,1,1,05,08,11,22,33,09,44"));
    EXPECT_EQ(Picture(), "GP8 GP9");
    EXPECT_EQ(Item(1).elevationDegrees, 44);
    EXPECT_EQ(Item(1).azimuthDegrees, 0);
}

// Since NMEA 4.1 a talker sends a group for each signal; they are one satellite each.
TEST_F(SatelliteAccumulatorTest, JoinsSignals) {
    EXPECT_TRUE(Feed("GPGSV,1,1,02,05,10,20,40,07,11,21,,1"));
    EXPECT_TRUE(Feed("GPGSV,1,1,03,05,10,20,,07,11,21,35,09,1,2,30,6"));
    EXPECT_EQ(Picture(), "GP5 GP7 GP9");
    EXPECT_EQ(Item(0).snrDb, 40);
    EXPECT_EQ(Item(1).snrDb, 35);
    // Two signals a cycle do not make the other talkers look silent.
    for (int cycle = 0; cycle < 5; ++cycle) {
        Feed("GLGSV,1,1,01,66,1,1,1,1");
        Feed("GLGSV,1,1,01,66,1,1,1,3");
        Feed("GPGSV,1,1,01,05,10,20,40,1");
        Feed("GPGSV,1,1,01,05,10,20,40,6");
        EXPECT_EQ(Picture(), "GP5 GL66");
    }
}

TEST_F(SatelliteAccumulatorTest, SilentTalkersDropOut) {
    Feed("GPGSV,1,1,01,05,1,1,1");
    Feed("GLGSV,1,1,01,66,1,1,1");
    Feed("GAGSV,1,1,01,11,1,1,1");
    Feed("GPGSV,1,1,01,05,1,1,1");
    Feed("GAGSV,1,1,01,11,1,1,1");
    EXPECT_EQ(Picture(), "GP5 GL66 GA11");
    Feed("GPGSV,1,1,01,05,1,1,1");
    EXPECT_EQ(Picture(), "GP5 GA11");
    // A talker alone stays.
    for (int i = 0; i < 5; ++i)
        Feed("GPGSV,1,1,01,05,1,1,1");
    EXPECT_EQ(Picture(), "GP5");
}

TEST_F(SatelliteAccumulatorTest, TalkersSilentTogetherDropOut) {
    for (const char* talker : {"GL", "GA", "GB"})
        Feed(std::string(talker) + "GSV,1,1,01,5,1,1,1");
    for (std::uint32_t i = 0; i < SatelliteAccumulator::kMaxSilentGroups; ++i) {
        Feed("GPGSV,1,1,01,05,1,1,1");
    }
    EXPECT_EQ(Picture(), "GP5");
}

TEST_F(SatelliteAccumulatorTest, MarksUsedSatellites) {
    EXPECT_FALSE(Feed("GPGSA,A,3,05,07,,,,,,,,,,,1,1,1"));  // no picture yet
    Feed("GPGSV,1,1,03,05,1,1,1,07,1,1,1,09,1,1,1");
    EXPECT_EQ(Picture(), "GP5* GP7* GP9");
    EXPECT_FALSE(Feed("GPGSA,A,3,07,05,,,,,,,,,,,1,1,1"));  // nothing changes
    Feed("GPGSV,1,1,03,05,1,1,1,07,1,1,1,09,1,1,1");
    EXPECT_TRUE(Feed("GPGSA,A,3,05,09,,,,,,,,,,,1,1,1"));
    EXPECT_EQ(Picture(), "GP5* GP7 GP9*");
    Feed("GPGSV,1,1,01,05,1,1,1");
    EXPECT_TRUE(Feed("GPGSA,A,1,,,,,,,,,,,,,,,"));
    EXPECT_EQ(Picture(), "GP5");
    Feed("GPGSV,1,1,03,401,1,1,1,402,1,1,1,65535,1,1,1");
    EXPECT_TRUE(Feed("GPGSA,A,3,402,402,65535,,,,,,,,,,1,1,1"));
    EXPECT_EQ(Picture(), "GP401 GP402* GP65535*");
}

TEST_F(SatelliteAccumulatorTest, ConsecutiveListsAddUp) {
    Feed("GPGSV,1,1,03,05,1,1,1,07,1,1,1,09,1,1,1");
    Feed("GPGSA,A,3,05,,,,,,,,,,,,1,1,1");
    Feed("GPGSA,A,3,07,,,,,,,,,,,,1,1,1");
    EXPECT_EQ(Picture(), "GP5* GP7* GP9");
    Feed("GPGSV,1,1,03,05,1,1,1,07,1,1,1,09,1,1,1");
    EXPECT_TRUE(Feed("GPGSA,A,3,09,,,,,,,,,,,,1,1,1"));  // afresh
    EXPECT_EQ(Picture(), "GP5 GP7 GP9*");
}

TEST_F(SatelliteAccumulatorTest, SystemIdsTellWhoIsMeant) {
    Feed("GPGSV,1,1,02,05,1,1,1,07,1,1,1,1");
    Feed("GAGSV,1,1,02,05,1,1,1,07,1,1,1,7");
    Feed("GNGSA,A,3,05,,,,,,,,,,,,1,1,1,1");
    Feed("GNGSA,A,3,07,,,,,,,,,,,,1,1,1,3");
    EXPECT_EQ(Picture(), "GP5* GP7 GA5 GA7*");
    // The next run replaces one constellation after the other, so that no flag flickers.
    Feed("GPGSV,1,1,02,05,1,1,1,07,1,1,1,1");
    EXPECT_FALSE(Feed("GNGSA,A,3,05,,,,,,,,,,,,1,1,1,1"));
    EXPECT_TRUE(Feed("GNGSA,A,3,05,,,,,,,,,,,,1,1,1,3"));
    EXPECT_EQ(Picture(), "GP5* GP7 GA5* GA7");
    // What a run left out is gone with the next picture.
    Feed("GAGSV,1,1,02,05,1,1,1,07,1,1,1,7");
    Feed("GNGSA,A,3,05,,,,,,,,,,,,1,1,1,1");
    EXPECT_EQ(Picture(), "GP5* GP7 GA5* GA7");
    Feed("GPGSV,1,1,02,05,1,1,1,07,1,1,1,1");
    EXPECT_EQ(Picture(), "GP5* GP7 GA5 GA7");
}

TEST_F(SatelliteAccumulatorTest, WithoutSystemIdNumbersDecide) {
    Feed("GPGSV,1,1,01,05,1,1,1");
    Feed("GLGSV,1,1,02,65,1,1,1,66,1,1,1");
    Feed("GNGSA,A,3,05,,,,,,,,,,,,1,1,1");
    Feed("GNGSA,A,3,66,,,,,,,,,,,,1,1,1");
    EXPECT_EQ(Picture(), "GP5* GL65 GL66*");
}

TEST_F(SatelliteAccumulatorTest, GarbageIsBounded) {
    for (int i = 0; i < 400; ++i) {
        const std::string talker = {static_cast<char>('A' + i / 20),
                                    static_cast<char>('A' + i % 20)};
        Feed(talker + "GSV,1,1,01,05,1,1,1");
    }
    EXPECT_LE(accumulator_.picture().size(), SatelliteAccumulator::kMaxSources);
    // A run longer than the lists keeps its last sentences.
    Feed("GPGSV,1,1,02,05,1,1,1,99,1,1,1");
    for (int i = 1; i < 100; ++i)
        Feed("GPGSA,A,3," + std::to_string(i) + ",,,,,,,,,,,,1,1,1");
    EXPECT_EQ(Picture().find("GP5*"), std::string::npos);
    EXPECT_NE(Picture().find("GP99*"), std::string::npos);
    SatelliteAccumulator fresh;
    for (int i = 1; i <= 100; ++i) {
        const auto sentence = MakeRef<NmeaSentence>();
        const std::string n = std::to_string(i);
        sentence->SetText(Sentence("GPGSV,100," + n + ",1,1" + n + ",1,1,1,2" + n + ",1,1,1"));
        EXPECT_EQ(fresh.AddGsv(*sentence), i == 100);
    }
    EXPECT_EQ(fresh.picture().size(), SatelliteAccumulator::kMaxSatellitesPerSource);
}

}  // namespace
}  // namespace kavrel
