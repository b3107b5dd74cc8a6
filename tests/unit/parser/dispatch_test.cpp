#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "receiver.h"
#include "unit/parser/receiver_test.h"

namespace kavrel {
namespace {

using DispatchTest = ReceiverTest;

constexpr const char* kGsa = "GPGSA,A,3,02,05,,,,,,,,,,,1.9,1.1,1.6";
constexpr const char* kGsv = "GPGSV,1,1,02,02,61,103,44,05,23,288,38";
constexpr const char* kVtg = "GPVTG,045.2,T,043.9,M,32.4,N,60.0,K";

TEST_F(DispatchTest, RaisesInOrder) {
    EXPECT_EQ(FeedRmc("120000", "010626"), "RMC+ Status+ Fix2@120000 Movement:32 Generic:RMC");
    EXPECT_EQ(FeedGga("120001"), "GGA+ Fix3@120001 Generic:GGA");
    EXPECT_EQ(Feed("GPGLL,4730,N,00843,E,120002,A"), "GLL+ Fix3@120002 Generic:GLL");
    EXPECT_EQ(Feed(kGsv), "Satellites:2 Generic:GSV");
    EXPECT_EQ(Feed(kGsa), "Quality:1 Satellites:2 Generic:GSA");
    EXPECT_EQ(Feed(kGsa), "Quality:1 Generic:GSA");
    EXPECT_EQ(Feed(kVtg), "Movement:32 Generic:VTG");
    EXPECT_EQ(Feed("PKVRL,1"), "Generic:VRL");
    EXPECT_EQ(Feed("gprmc,1,V"), "rmc- Status- Fix0 Movement:0 Generic:rmc");
}

TEST_F(DispatchTest, TracksTheValidFix) {
    EXPECT_FALSE(parser_->GetComStatus()->ValidFix());
    EXPECT_EQ(FeedGga("1", '0'), "GGA- Fix0 Generic:GGA");
    EXPECT_EQ(FeedGga("2"), "GGA+ Status+ Fix3@000002 Generic:GGA");
    EXPECT_TRUE(parser_->GetComStatus()->ValidFix());
    EXPECT_EQ(FeedGga("3"), "GGA+ Fix3@000003 Generic:GGA");
    EXPECT_EQ(FeedGga("4", '0'), "GGA- Status- Fix0 Generic:GGA");
    EXPECT_FALSE(parser_->GetComStatus()->ValidFix());
}

TEST_F(DispatchTest, AllEventsGenericDecodesNothing) {
    parser_->SetAllEventsGeneric(true);
    EXPECT_EQ(FeedRmc("120000", "010626"), "Generic:RMC");
    EXPECT_EQ(Feed(kGsv) + Feed(kGsa), "Generic:GSVGeneric:GSA");
    parser_->SetNoEvents(true);
    EXPECT_EQ(FeedRmc("120000", "010626"), "");
    EXPECT_FALSE(parser_->GetGpsFix(0, 0));
    EXPECT_FALSE(parser_->GetComStatus()->ValidFix());
}

TEST_F(DispatchTest, WithoutHandlerNothingIsDone) {
    parser_->SetEventSink(EventLog::SinkTo(log_, {ParserEvent::GpsFix, ParserEvent::Satellites}));
    EXPECT_EQ(FeedGga("120000"), "GGA+ Generic:GGA");
    EXPECT_FALSE(parser_->GetComStatus()->ValidFix());
    EXPECT_EQ(Feed(kGsv), "Generic:GSV");
    parser_->SetEventSink(EventLog::SinkTo(log_));
    // No GGA was kept, and no picture.
    EXPECT_EQ(FeedRmc("120000", "010626"), "RMC+ Status+ Fix2@120000 Movement:32 Generic:RMC");
    EXPECT_EQ(Feed(kGsa), "Quality:1 Generic:GSA");
}

TEST_F(DispatchTest, StartsAfresh) {
    FeedGga("120000");
    Feed(kGsv);
    parser_->SetPortEnabled(true);
    parser_->SetPortEnabled(false);
    EXPECT_EQ(FeedRmc("120000", "010626"), "RMC+ Fix2@120000 Movement:32 Generic:RMC");
    EXPECT_EQ(Feed(kGsa), "Quality:1 Generic:GSA");
}

TEST_F(DispatchTest, ComStatusWorkCarriesItsSnapshot) {
    parser_->Dispatch({.kind = WorkKind::ComStatus,
                       .object = MakeRef<ComStatus>(ComStatusValues{.hasValidFix = true})});
    EXPECT_EQ(log_.Take(), "Status+");
    parser_->Dispatch({.kind = WorkKind::ComStatus, .object = nullptr});
    EXPECT_EQ(log_.Take(), "Status-");
    parser_->SetNoEvents(true);
    parser_->Dispatch({.kind = WorkKind::ComStatus, .object = nullptr});
    EXPECT_EQ(log_.Take(), "");
}

// The views of one update must not outlive what a client does to the sentence.
TEST_F(DispatchTest, ClientsMayChangeTheSentence) {
    EventSink sink = EventLog::SinkTo(log_);
    sink.callbacks[static_cast<std::size_t>(ParserEvent::Gga)] = [](void*, ParserEvent,
                                                                    Record& object) {
        NmeaSentence& sentence = static_cast<NmeaGga&>(object).sentence();
        sentence.SetField(1, "235959");
        sentence.SetField(9, std::string(300, '7'));
        sentence.SetText(std::string(sentence.Text()));
    };
    parser_->SetEventSink(sink);
    EXPECT_EQ(FeedGga("120000"), "Status+ Fix3@235959 Generic:GGA");
}

// The receiver of a com status may want no fix any more, though one is about to be raised.
TEST_F(DispatchTest, ComStatusHandlerMayEndTheFixEvent) {
    struct Leaver {
        NmeaParser& parser;
        bool asksInstead;
        int fixes = 0;

        static void OnEvent(void* context, ParserEvent event, Record&) {
            auto& self = *static_cast<Leaver*>(context);
            if (event == ParserEvent::GpsFix) ++self.fixes;
            if (event != ParserEvent::ComStatus) return;
            self.asksInstead ? self.parser.SetNoEvents(true) : self.parser.SetEventSink({});
        }
    };
    for (const bool asksInstead : {false, true}) {
        parser_ = MakeRef<NmeaParser>();
        Leaver leaver{*parser_, asksInstead};
        EventSink sink;
        sink.context = &leaver;
        sink.callbacks.fill(&Leaver::OnEvent);
        parser_->SetEventSink(sink);
        FeedGga("120000");
        EXPECT_EQ(leaver.fixes, 0);
        EXPECT_EQ(static_cast<bool>(parser_->GetGpsFix(0, 0)), asksInstead);
    }
}

TEST_F(DispatchTest, PositionsAreOnTheGpsDatum) {
    parser_->SetNoEvents(true);
    parser_->SetGpsDatum(5);
    FeedGga("120000");
    EXPECT_EQ(parser_->GetGpsFix(0, 0)->MakePosition()->Datum(), 5);
}

TEST_F(DispatchTest, DatumSetByAnEventIsForTheNextFix) {
    struct Client {
        NmeaParser& parser;
        std::vector<std::int16_t> datums;
    } client{*parser_, {}};
    EventSink sink;
    sink.context = &client;
    sink.callbacks[static_cast<std::size_t>(ParserEvent::ComStatus)] = [](void* context,
                                                                          ParserEvent, Record&) {
        static_cast<Client*>(context)->parser.SetGpsDatum(5);
    };
    sink.callbacks[static_cast<std::size_t>(ParserEvent::GpsFix)] = [](void* context, ParserEvent,
                                                                       Record& fix) {
        static_cast<Client*>(context)->datums.push_back(
            static_cast<GpsFix&>(fix).MakePosition()->Datum());
    };
    parser_->SetEventSink(sink);
    FeedGga("120000");
    FeedGga("120001");
    EXPECT_EQ(client.datums, (std::vector<std::int16_t>{1, 5}));
}

TEST_F(DispatchTest, IntervalsGoByTheReceiversClock) {
    parser_->SetEventInterval(5000, 5);
    std::string times;
    for (int second = 0; second < 13; ++second) {
        const std::string time = "1200" + std::to_string(10 + second);
        std::string events = FeedRmc(time, "010626");
        events += FeedGga(time);
        for (std::size_t at = 0; (at = events.find("Fix", at)) != std::string::npos; ++at) {
            times += events.substr(at, 11) + " ";
        }
    }
    EXPECT_EQ(times, "Fix2@120010 Fix3@120015 Fix3@120020 ");
}

TEST_F(DispatchTest, IntervalsHaveWholeSeconds) {
    int hour = 0;
    const auto countIn5Seconds = [this, &hour](std::int32_t intervalMs) {
        ++hour;
        const std::string time = "0" + std::to_string(hour) + "000";
        parser_->SetEventInterval(intervalMs, 7);
        FeedRmc(time + "0", "020626");
        int count = 0;
        for (int second = 1; second <= 5; ++second) {
            const std::string events = FeedRmc(time + std::to_string(second), "020626");
            count += events.find("Movement") != std::string::npos ? 1 : 0;
            EXPECT_NE(events.find("RMC+"), std::string::npos);
        }
        return count;
    };
    EXPECT_EQ(countIn5Seconds(0), 5);
    EXPECT_EQ(countIn5Seconds(500), 5);
    EXPECT_EQ(countIn5Seconds(999), 5);
    EXPECT_EQ(countIn5Seconds(1000), 5);
    EXPECT_EQ(countIn5Seconds(1500), 5);
    EXPECT_EQ(countIn5Seconds(2000), 2);
    EXPECT_EQ(countIn5Seconds(2147483647), 0);
    EXPECT_EQ(countIn5Seconds(-7), 0);
}

TEST_F(DispatchTest, ClockGoesOnWhileFixesAreOff) {
    parser_->SetEventInterval(-1, 5);
    parser_->SetEventInterval(10000, 8);
    EXPECT_EQ(FeedGga("120000"), "GGA+ Status+ Generic:GGA");
    EXPECT_EQ(Feed(kGsa), "Quality:1 Generic:GSA");
    FeedGga("120009");
    EXPECT_EQ(Feed(kGsa), "Generic:GSA");
    FeedGga("120010");
    EXPECT_EQ(Feed(kGsa), "Quality:1 Generic:GSA");
}

TEST_F(DispatchTest, TimeGoingBackwardsRaises) {
    parser_->SetEventInterval(60000, 5);
    EXPECT_EQ(FeedGga("235959"), "GGA+ Status+ Fix3@235959 Generic:GGA");
    EXPECT_EQ(FeedGga("000000"), "GGA+ Fix3@000000 Generic:GGA");
    EXPECT_EQ(FeedGga("000001"), "GGA+ Generic:GGA");
}

TEST_F(DispatchTest, MidnightWithADateIsOneSecond) {
    parser_->SetEventInterval(2000, 5);
    EXPECT_EQ(FeedRmc("235959", "311225"), "RMC+ Status+ Fix2@235959 Movement:32 Generic:RMC");
    EXPECT_EQ(FeedRmc("000000", "010126"), "RMC+ Movement:32 Generic:RMC");
    EXPECT_EQ(FeedRmc("000001", "010126"), "RMC+ Fix2@000001 Movement:32 Generic:RMC");
}

// Records are used again, but never one that somebody keeps.
TEST_F(DispatchTest, KeptObjectsNeverChange) {
    struct Keeper {
        struct Kept {
            ParserEvent event;
            Ref<Record> object;
            std::string description;
        };
        std::vector<Kept> kept;
        std::set<const Record*> seen;
        std::size_t events = 0;
        std::ptrdiff_t generic = 0;
    };
    Keeper keeper;
    EventSink sink;
    sink.context = &keeper;
    sink.callbacks.fill([](void* context, ParserEvent event, Record& object) {
        auto& own = *static_cast<Keeper*>(context);
        own.seen.insert(&object);
        if (event == ParserEvent::Generic)
            own.generic += static_cast<NmeaSentence&>(object).FullCommand().size() == 5 ? 1 : 0;
        // Some of each kind, so that there are kept ones, spare ones and new ones.
        if (++own.events % 5 != 0) return;
        if (event == ParserEvent::Satellites) static_cast<Satellites&>(object).Item(1);
        own.kept.push_back({event, Ref<Record>::Share(&object), EventLog::Describe(event, object)});
    });
    parser_->SetEventSink(sink);
    simulator::Receiver receiver({});
    std::ptrdiff_t sentences = 0;
    for (int epoch = 0; epoch < 50; ++epoch) {
        const std::string text = receiver.NextEpoch();
        sentences += std::ranges::count(text, '\n');
        for (std::size_t at = 0; at < text.size(); at += 300)
            parser_->Parse(std::string_view(text).substr(at, 300));
    }

    EXPECT_EQ(keeper.generic, sentences);
    EXPECT_LT(keeper.seen.size(), keeper.events / 3);
    ASSERT_GT(keeper.kept.size(), 150u);
    std::set<ParserEvent> kinds;
    for (const Keeper::Kept& each : keeper.kept) {
        kinds.insert(each.event);
        EXPECT_EQ(EventLog::Describe(each.event, *each.object), each.description);
    }
    EXPECT_EQ(kinds.size(), 8u);
}

TEST_F(DispatchTest, SnapshotsAskedForNeverChange) {
    parser_->SetNoEvents(true);
    FeedGga("120000");
    const Ref<GpsFix> kept = parser_->GetGpsFix(0, 0);
    for (const char* time : {"120001", "120002", "120003"})
        FeedGga(time);
    EXPECT_EQ(kept->time()->second(), 0);
    EXPECT_EQ(parser_->GetGpsFix(0, 0)->time()->second(), 3);
}

// However the text is cut, the events are the same.
TEST_F(DispatchTest, CutsOfTheTextDoNotMatter) {
    simulator::Options options;
    options.constellations = 2;
    options.badChecksumShare = 0.05;
    options.halfSentenceShare = 0.05;
    options.lostFixShare = 0.1;
    options.startSeconds = 86400 - 8;
    simulator::Receiver receiver(options);
    std::string text;
    while (text.size() < 20'000)
        text += receiver.NextEpoch();
    std::vector<std::string_view> lines;
    for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(lines.back().size()))
        lines.push_back(rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1));
    std::size_t longestLine = 0;
    for (const std::string_view line : lines)
        longestLine = std::max(longestLine, line.size());

    // Line by line, each in two pieces.
    const auto eventsOfLinesCutAt = [&](std::size_t cut) {
        const auto parser = MakeRef<NmeaParser>();
        parser->SetEventSink(EventLog::SinkTo(log_));
        for (const std::string_view line : lines) {
            parser->Parse(line.substr(0, cut));
            parser->Parse(line.substr(std::min(cut, line.size())));
        }
        return log_.Take();
    };
    const std::string expected = eventsOfLinesCutAt(0);
    ASSERT_GT(expected.size(), 5000u);
    // Each position of the text is a cut once.
    for (std::size_t cut = 1; cut < longestLine; ++cut)
        ASSERT_EQ(eventsOfLinesCutAt(cut), expected) << cut;

    const auto eventsOfPieces = [&](std::size_t size, std::size_t first) {
        const auto parser = MakeRef<NmeaParser>();
        parser->SetEventSink(EventLog::SinkTo(log_));
        parser->Parse(std::string_view(text).substr(0, first));
        for (std::size_t at = first; at < text.size(); at += size)
            parser->Parse(std::string_view(text).substr(at, size));
        return log_.Take();
    };
    for (const std::size_t size : {1u, 37u, 101u, 256u}) {
        for (std::size_t first = 0; first < size; first += size / 32 + 1)
            ASSERT_EQ(eventsOfPieces(size, first), expected) << size << ' ' << first;
    }
}

}  // namespace
}  // namespace kavrel
