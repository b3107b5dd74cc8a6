// A client that writes down its events, for tests.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "parser/nmea_parser.h"
#include "platform/host/scripted_machine.h"
#include "results/decoded_sentence.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {

class EventLog {
  public:
    EventSink Sink(std::initializer_list<ParserEvent> without = {}) {
        EventSink sink;
        sink.context = this;
        sink.callbacks.fill(&EventLog::OnEvent);
        for (const ParserEvent event : without)
            sink.callbacks[static_cast<std::size_t>(event)] = nullptr;
        return sink;
    }

    // What was logged since the last call, each event with what tells it apart.
    std::string Take() { return std::exchange(text_, {}); }

    static std::string Describe(ParserEvent event, Record& object) {
        const auto number = [](double value) { return std::to_string(static_cast<int>(value)); };
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
                return "Fix" + number(fix.FixType()) +
                       (fix.time() ? "@" + fix.time()->Format(TimeStyle::NmeaTime) : "");
            }
            case ParserEvent::Movement:
                return "Movement:" + number(static_cast<Movement&>(object).Speed(0));
            case ParserEvent::Satellites:
                return "Satellites:" + number(static_cast<Satellites&>(object).Count());
            case ParserEvent::Quality:
                return "Quality:" + number(static_cast<Quality&>(object).Pdop());
            case ParserEvent::ComStatus:
                return static_cast<ComStatus&>(object).ValidFix() ? "Status+" : "Status-";
            case ParserEvent::Count:
                break;
        }
        return "?";
    }

    // What the client does with an event, once it is written down.
    std::function<void(ParserEvent, Record&)> act;

    // How many events there were, for a client that waits for another thread's.
    std::atomic<int> count{0};

  private:
    static void OnEvent(void* context, ParserEvent event, Record& object) {
        EXPECT_FALSE(libraryLock.IsHeldByThisThread());
        auto& log = *static_cast<EventLog*>(context);
        log.text_ += (log.text_.empty() ? "" : " ") + Describe(event, object);
        if (log.act) log.act(event, object);
        ++log.count;
    }

    std::string text_;
};

class ReceiverTest : public testing::Test {
  protected:
    ReceiverTest() { parser_->SetEventSink(log_.Sink()); }
    void TearDown() override {
        if (parser_) parser_->ShutDown();
    }

    // The events that a sentence causes.
    std::string Feed(std::string_view body) {
        parser_->Parse(Line(body));
        return log_.Take();
    }
    std::string FeedGga(const std::string& time) {
        return Feed("GPGGA," + time + ",4730,N,00843,E,1,08,1.1,432.5,M,47.9,M,,");
    }

    // Whether it comes true within a minute: a busy machine may be late.
    static bool Await(const std::function<bool()>& condition) {
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > giveUp) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }

    // Handles messages until the log holds an event of that description, and returns all of it.
    std::string HandleUntil(const std::string& last) {
        std::string text;
        EXPECT_TRUE(Await([&] {
            machine_.messages().HandleAll();
            const std::string more = log_.Take();
            text += (text.empty() || more.empty() ? "" : " ") + more;
            return text.find(last) != std::string::npos;
        }));
        return text;
    }

    ScriptedMachine machine_;
    ScriptedCommDevice& port_ = machine_.Port(3);  // the only one
    EventLog log_;
    Ref<NmeaParser> parser_ = MakeRef<NmeaParser>(machine_);
};

}  // namespace kavrel
