#include "parser/nmea_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Keeps the texts of what is raised to it, and may act on each.
class Client {
  public:
    using Action = std::function<void(NmeaSentence&)>;

    EventSink Sink() {
        EventSink sink;
        sink.context = this;
        sink.callbacks[static_cast<std::size_t>(ParserEvent::Generic)] = &Client::OnGeneric;
        return sink;
    }

    std::vector<std::string> texts;
    Action action;

  private:
    static void OnGeneric(void* context, ParserEvent event, Record& object) {
        EXPECT_EQ(event, ParserEvent::Generic);
        EXPECT_FALSE(libraryLock.IsHeldByThisThread());
        Client& client = *static_cast<Client*>(context);
        auto& sentence = static_cast<NmeaSentence&>(object);
        client.texts.emplace_back(sentence.Text());
        if (client.action) client.action(sentence);
    }
};

class NmeaParserTest : public testing::Test {
  protected:
    NmeaParserTest() { parser_->SetEventSink(client_.Sink()); }
    void TearDown() override {
        parser_.Reset();
        EXPECT_EQ(Record::LiveCount(), liveBefore_);
    }
    void ExpectError(ErrorCode code, std::string_view text) {
        EXPECT_EQ(parser_->error().code(), code);
        EXPECT_EQ(parser_->error().text(), text);
    }

    std::int32_t liveBefore_ = Record::LiveCount();
    Ref<NmeaParser> parser_ = MakeRef<NmeaParser>();
    Client client_;
};

TEST_F(NmeaParserTest, RaisesSeveralInOrder) {
    parser_->Parse(Line("PKVRL,1") + "$PKVRL,2*00\r\n" + Line("PKVRL,3") + "$PKVRL,4");
    EXPECT_THAT(client_.texts, ElementsAre(Sentence("PKVRL,1"), Sentence("PKVRL,3")));
}

TEST_F(NmeaParserTest, TakesTheLastOfTooMuch) {
    std::string text;
    while (text.size() < 1024 * 1024)
        text += Line("PKVRL," + std::to_string(text.size()));
    parser_->Parse(text + Line("PKVRL,last"));
    ASSERT_FALSE(client_.texts.empty());
    EXPECT_EQ(client_.texts.back(), Sentence("PKVRL,last"));
    EXPECT_LT(client_.texts.size(), 512u / 15);
    parser_->Parse("");
    parser_->Parse({});
    EXPECT_EQ(parser_->error().code(), kNoError);
}

TEST_F(NmeaParserTest, ClientsMayKeepTheSentence) {
    Ref<NmeaSentence> kept;
    client_.action = [&kept](NmeaSentence& sentence) {
        kept = Ref<NmeaSentence>::Share(&sentence);
    };
    parser_->Parse(Line("PKVRL,1"));
    parser_->Parse(std::string(600, 'x'));
    parser_.Reset();
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->Text(), Sentence("PKVRL,1"));
}

TEST_F(NmeaParserTest, ChecksumMayBeMandatory) {
    parser_->SetChecksumMandatory(true);
    parser_->Parse("$PKVRL,1\r\n");
    parser_->SetChecksumMandatory(false);
    parser_->Parse("$PKVRL,2\r\n");
    EXPECT_THAT(client_.texts, ElementsAre("$PKVRL,2"));
}

TEST_F(NmeaParserTest, NoEventsRaisesNothing) {
    parser_->SetNoEvents(true);
    parser_->Parse(Line("PKVRL,1") + Line("GPGGA,,,,,,0,,,,,,,,"));
    EXPECT_THAT(client_.texts, IsEmpty());
    parser_->SetNoEvents(false);
    parser_->Parse(Line("PKVRL,2"));
    EXPECT_THAT(client_.texts, ElementsAre(Sentence("PKVRL,2")));
}

// What a callback feeds is dispatched inside it, behind what waited before.
TEST_F(NmeaParserTest, CallbacksMayParse) {
    client_.action = [this](NmeaSentence& sentence) {
        if (sentence.Field(1) == "1") parser_->Parse(Line("PKVRL,inner") + "$PKV");
    };
    parser_->Parse(Line("PKVRL,1") + Line("PKVRL,2"));
    parser_->Parse("RL,3\r\n");
    EXPECT_THAT(client_.texts, ElementsAre(Sentence("PKVRL,1"), Sentence("PKVRL,2"),
                                           Sentence("PKVRL,inner"), "$PKVRL,3"));
}

TEST_F(NmeaParserTest, CallbacksMayNestDeeply) {
    constexpr int kDepth = 200;
    client_.action = [this](NmeaSentence&) {
        if (client_.texts.size() < kDepth) parser_->Parse(Line("PKVRL,again"));
    };
    parser_->Parse(Line("PKVRL,first"));
    EXPECT_EQ(client_.texts.size(), std::size_t{kDepth});
}

TEST_F(NmeaParserTest, CallbacksMayReplaceTheSink) {
    Client other;
    client_.action = [&](NmeaSentence&) { parser_->SetEventSink(other.Sink()); };
    other.action = [&](NmeaSentence&) { parser_->SetEventSink({}); };
    parser_->Parse(Line("PKVRL,1") + Line("PKVRL,2") + Line("PKVRL,3"));
    EXPECT_THAT(client_.texts, ElementsAre(Sentence("PKVRL,1")));
    EXPECT_THAT(other.texts, ElementsAre(Sentence("PKVRL,2")));
}

TEST_F(NmeaParserTest, CallbacksMayChangeSettings) {
    client_.action = [this](NmeaSentence&) { parser_->SetNoEvents(true); };
    parser_->Parse(Line("PKVRL,1") + Line("PKVRL,2"));
    EXPECT_THAT(client_.texts, ElementsAre(Sentence("PKVRL,1")));
}

TEST_F(NmeaParserTest, ACallbackSeesItsChangesOfTheSentence) {
    client_.action = [](NmeaSentence& sentence) { sentence.SetField(1, "changed"); };
    auto sentence = MakeRef<NmeaSentence>();
    sentence->SetText("$PKVRL,1");
    parser_->Dispatch({.kind = WorkKind::Sentence, .object = sentence});
    EXPECT_EQ(sentence->Text(), Sentence("PKVRL,changed"));
}

TEST_F(NmeaParserTest, DatumsAreNumberedFrom1To28) {
    for (const std::int16_t datum : {1, 2, 27, 28}) {
        parser_->SetGpsDatum(datum);
        EXPECT_EQ(parser_->error().code(), kNoError) << datum;
    }
    for (const std::int16_t datum : {0, 29, -1, 32767, -32768}) {
        parser_->SetGpsDatum(datum);
        ExpectError(10003, "Unknown datum!");
    }
}

TEST_F(NmeaParserTest, IntervalsBelongToEventTypes5To8) {
    for (const std::int32_t type : {5, 6, 7, 8}) {
        for (const std::int32_t intervalMs : {0, 1000, -7, std::numeric_limits<int>::min()}) {
            parser_->SetEventInterval(intervalMs, type);
            EXPECT_EQ(parser_->error().code(), kNoError) << type;
        }
    }
    for (const std::int32_t type :
         {0, 1, 4, 9, -5, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        parser_->SetEventInterval(1000, type);
        ExpectError(10003, "Unknown event type!");
    }
}

TEST_F(NmeaParserTest, EverySettingClearsTheError) {
    const std::function<void()> kSettings[] = {
        [this] { parser_->SetAllEventsGeneric(true); },
        [this] { parser_->SetGpsDatum(1); },
        [this] { parser_->SetComPort(3); },
        [this] { parser_->SetBaudRate(0); },
        [this] { parser_->SetBaudRate(9600); },
        [this] { parser_->SetNoEvents(true); },
        [this] { parser_->SetChecksumMandatory(true); },
        [this] { parser_->SetEventInterval(1, 5); },
        [this] { parser_->Parse("x"); },
    };
    for (const auto& set : kSettings) {
        parser_->SetGpsDatum(0);
        ASSERT_TRUE(parser_->error().IsSet());
        set();
        EXPECT_FALSE(parser_->error().IsSet());
    }
}

}  // namespace
}  // namespace kavrel
