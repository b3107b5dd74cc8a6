// A client that writes down its events, for tests.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "parser/nmea_parser.h"
#include "results/decoded_sentence.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {

class EventLog {
  public:
    static EventSink SinkTo(EventLog& log, std::initializer_list<ParserEvent> without = {}) {
        EventSink sink;
        sink.context = &log;
        sink.callbacks.fill(&EventLog::OnEvent);
        for (const ParserEvent event : without) {
            sink.callbacks[static_cast<std::size_t>(event)] = nullptr;
        }
        return sink;
    }

    // What was logged since the last call, each event with what tells it apart.
    std::string Take() { return std::exchange(text_, {}); }

    static std::string Describe(ParserEvent event, Record& object) {
        switch (event) {
            case ParserEvent::Generic:
                return "Generic:" + std::string(static_cast<NmeaSentence&>(object).Command());
            case ParserEvent::Gga:
            case ParserEvent::Gll:
            case ParserEvent::Rmc: {
                auto& decoded = static_cast<DecodedSentence&>(object);
                return std::string(decoded.sentence().Command()) + (decoded.Valid() ? "+" : "-");
            }
            case ParserEvent::GpsFix: {
                auto& fix = static_cast<GpsFix&>(object);
                std::string text = "Fix" + std::to_string(fix.FixType());
                if (fix.time()) text += "@" + fix.time()->Format(TimeStyle::NmeaTime);
                return text;
            }
            case ParserEvent::Movement:
                return "Movement:" +
                       std::to_string(static_cast<int>(static_cast<Movement&>(object).Speed(0)));
            case ParserEvent::Satellites:
                return "Satellites:" + std::to_string(static_cast<Satellites&>(object).Count());
            case ParserEvent::Quality:
                return "Quality:" +
                       std::to_string(static_cast<int>(static_cast<Quality&>(object).Pdop()));
            case ParserEvent::ComStatus:
                return static_cast<ComStatus&>(object).ValidFix() ? "Status+" : "Status-";
            case ParserEvent::Count:
                break;
        }
        return "?";
    }

  private:
    static void OnEvent(void* context, ParserEvent event, Record& object) {
        EXPECT_FALSE(libraryLock.IsHeldByThisThread());
        std::string& text = static_cast<EventLog*>(context)->text_;
        if (!text.empty()) text += ' ';
        text += Describe(event, object);
    }

    std::string text_;
};

class ReceiverTest : public testing::Test {
  protected:
    ReceiverTest() { parser_->SetEventSink(EventLog::SinkTo(log_)); }
    void TearDown() override {
        parser_.Reset();
        EXPECT_EQ(Record::LiveCount(), liveBefore_);
    }

    // The events that a sentence causes.
    std::string Feed(std::string_view body) {
        parser_->Parse(Line(body));
        return log_.Take();
    }
    std::string FeedGga(std::string_view time, char quality = '1') {
        return Feed("GPGGA," + std::string(time) + ",4730,N,00843,E," + quality +
                    ",08,1.1,432.5,M,47.9,M,,");
    }
    std::string FeedRmc(std::string_view time, std::string_view date, char status = 'A') {
        return Feed("GPRMC," + std::string(time) + "," + status + ",4730,N,00843,E,32,45," +
                    std::string(date) + ",,");
    }

    std::int32_t liveBefore_ = Record::LiveCount();
    Ref<NmeaParser> parser_ = MakeRef<NmeaParser>();
    EventLog log_;
};

}  // namespace kavrel
