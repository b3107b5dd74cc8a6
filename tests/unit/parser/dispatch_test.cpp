// What clients may do inside an event, and what must not matter to the events.
#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "receiver.h"
#include "unit/parser/describe.h"
#include "unit/parser/receiver_test.h"

namespace kavrel {
namespace {

using DispatchTest = ReceiverTest;

// What a callback feeds is dispatched inside it, behind what waited before. What it fails to do is
// its own error.
TEST_F(DispatchTest, CallbacksMayParse) {
    log_.act = [this](ParserEvent, Record& object) {
        if (static_cast<NmeaSentence&>(object).Command() == "VRA")
            parser_->Parse(Line("PKVRC,inner") + "$PKV");
        parser_->SetGpsDatum(0);
        EXPECT_TRUE(parser_->error().IsSet());
    };
    parser_->Parse(Line("PKVRA,1") + Line("PKVRB,2"));
    parser_->Parse("RD,3\r\n");
    EXPECT_EQ(log_.Take(), "Generic:VRA Generic:VRB Generic:VRC Generic:VRD");
    EXPECT_FALSE(parser_->error().IsSet());
}

TEST_F(DispatchTest, CallbacksMayReplaceTheSink) {
    EventLog other;
    log_.act = [&](ParserEvent, Record&) { parser_->SetEventSink(other.Sink()); };
    other.act = [&](ParserEvent, Record&) { parser_->SetEventSink({}); };
    parser_->Parse(Line("PKVRA,1") + Line("PKVRB,2") + Line("PKVRC,3"));
    EXPECT_EQ(log_.Take(), "Generic:VRA");
    EXPECT_EQ(other.Take(), "Generic:VRB");
}

// The views of one update must not outlive what a client does to the sentence.
TEST_F(DispatchTest, ClientsMayChangeTheSentence) {
    log_.act = [](ParserEvent event, Record& object) {
        if (event != ParserEvent::Gga) return;
        NmeaSentence& sentence = static_cast<NmeaGga&>(object).sentence();
        sentence.SetField(1, "235959");
        sentence.SetField(9, std::string(300, '7'));
        sentence.SetText(std::string(sentence.Text()));
    };
    EXPECT_EQ(FeedGga("120000"), "GGA+ Status+ Fix3@235959 Generic:GGA");
}

// The receiver of a com status may want no fix any more, though one is about to be raised.
TEST_F(DispatchTest, ComStatusHandlerMayEndTheFixEvent) {
    for (const bool asksInstead : {false, true}) {
        parser_ = MakeRef<NmeaParser>();
        parser_->SetEventSink(log_.Sink());
        log_.act = [&](ParserEvent event, Record&) {
            if (event != ParserEvent::ComStatus) return;
            asksInstead ? parser_->SetNoEvents(true) : parser_->SetEventSink({});
        };
        EXPECT_EQ(FeedGga("120000"), "GGA+ Status+");
        EXPECT_EQ(static_cast<bool>(parser_->GetGpsFix(0, 0)), asksInstead);
    }
}

TEST_F(DispatchTest, DatumSetByAnEventIsForTheNextFix) {
    std::vector<std::int16_t> datums;
    log_.act = [&](ParserEvent event, Record& object) {
        if (event == ParserEvent::ComStatus) parser_->SetGpsDatum(5);
        if (event == ParserEvent::Gga)
            datums.push_back(static_cast<NmeaGga&>(object).MakePosition()->Datum());
        if (event == ParserEvent::GpsFix)
            datums.push_back(static_cast<GpsFix&>(object).MakePosition()->Datum());
    };
    FeedGga("120000");
    FeedGga("120001");
    EXPECT_EQ(datums, (std::vector<std::int16_t>{1, 1, 5, 5}));
}

// Records are used again, but never one that somebody keeps.
TEST_F(DispatchTest, KeptObjectsNeverChange) {
    struct Kept {
        ParserEvent event;
        Ref<Record> object;
        std::string description;
    };
    const auto describe = [](ParserEvent event, Record& object) {
        const bool isDecoded =
            event == ParserEvent::Gga || event == ParserEvent::Gll || event == ParserEvent::Rmc;
        return Describe(event, object) +
               std::string(isDecoded ? static_cast<DecodedSentence&>(object).sentence().Text()
                                     : "");
    };
    std::vector<Kept> kept;
    std::set<const Record*> seen;
    std::size_t events = 0;
    std::ptrdiff_t whole = 0;
    log_.act = [&](ParserEvent event, Record& object) {
        seen.insert(&object);
        if (event == ParserEvent::Generic)
            whole += static_cast<NmeaSentence&>(object).FullCommand().size() == 5 ? 1 : 0;
        // Some of each kind, so that there are kept ones, spare ones and new ones.
        if (++events % 5 == 0)
            kept.push_back({event, Ref<Record>::Share(&object), describe(event, object)});
    };
    simulator::Receiver receiver({});
    std::ptrdiff_t sentences = 0;
    for (int epoch = 0; epoch < 50; ++epoch) {
        const std::string text = receiver.NextEpoch();
        sentences += std::ranges::count(text, '\n');
        for (std::size_t at = 0; at < text.size(); at += 300)
            parser_->Parse(std::string_view(text).substr(at, 300));
    }

    EXPECT_EQ(whole, sentences);
    EXPECT_LT(seen.size(), events / 3);
    ASSERT_GT(kept.size(), 150u);
    std::set<ParserEvent> kinds;
    for (const Kept& each : kept) {
        kinds.insert(each.event);
        EXPECT_EQ(describe(each.event, *each.object), each.description);
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

    const auto eventsOfPieces = [&](std::size_t size) {
        const auto parser = MakeRef<NmeaParser>();
        parser->SetEventSink(log_.Sink());
        for (std::size_t at = 0; at < text.size(); at += size)
            parser->Parse(std::string_view(text).substr(at, size));
        return log_.Take();
    };
    const std::string expected = eventsOfPieces(1);
    ASSERT_GT(expected.size(), 5000u);
    for (std::size_t size = 2; size < 400; ++size)
        ASSERT_EQ(eventsOfPieces(size), expected) << size;
}

}  // namespace
}  // namespace kavrel
