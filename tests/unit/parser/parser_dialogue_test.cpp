// What a parser raises, queues and answers: the dialogues of tests/data/parser/dialogues.txt, each
// with a parser of its own.
#include "unit/comm_call.h"
#include "unit/dialogue.h"
#include "unit/parser/describe.h"
#include "unit/parser/receiver_test.h"

namespace kavrel {
namespace {

class ParserDialogue : public ReceiverTest, public testing::WithParamInterface<TableGroup> {
  protected:
    ParserDialogue() {
        dialogue_.Add("SetAllEventsGeneric", &NmeaParser::SetAllEventsGeneric);
        dialogue_.Add("SetNoEvents", &NmeaParser::SetNoEvents);
        dialogue_.Add("SetQueuedDelivery", &NmeaParser::SetQueuedDelivery);
        dialogue_.Add("SetChecksumMandatory", &NmeaParser::SetChecksumMandatory);
        dialogue_.Add("SetGpsDatum", &NmeaParser::SetGpsDatum);
        dialogue_.Add("SetEventInterval", &NmeaParser::SetEventInterval);
        dialogue_.AddOperation("Parse", [this](const std::string& line) {
            parser_->Parse(line + "\r\n");
            return log_.Take();
        });
        dialogue_.Add("Feed", [this](const std::string& body) { return Feed(body); });
        dialogue_.Add("FeedStatus", [this](bool isValid) {
            parser_->Dispatch(
                {.kind = WorkKind::ComStatus,
                 .object =
                     isValid ? MakeRef<ComStatus>(ComStatusValues{.hasValidFix = true}) : nullptr});
            return log_.Take();
        });
        dialogue_.Add("ListenWithout", [this](int first, int second) {
            parser_->SetEventSink(
                log_.Sink({static_cast<ParserEvent>(first), static_cast<ParserEvent>(second)}));
        });
        dialogue_.Add("ListenToAll", [this] { parser_->SetEventSink(log_.Sink()); });
        AddQueries();
        dialogue_.Add("TakeQueued", [this] {
            const std::optional<QueuedEvent> event = parser_->TakeQueuedEvent();
            if (!event) return std::string("(none)");
            return std::to_string(static_cast<int>(event->code)) + " " +
                   EventLog::Describe(EventOf(event->code), *event->object);
        });
        dialogue_.Add("StopQueue", [this] { parser_->StopQueue(); });
        AddPort();
        AddHandOver();
    }

    Dialogue<NmeaParser> dialogue_{[this]() -> NmeaParser& { return *parser_; }};

  private:
    void AddQueries() {
        AddQuery("GetGpsFix", ParserEvent::GpsFix, &NmeaParser::GetGpsFix);
        AddQuery("GetSatellites", ParserEvent::Satellites, &NmeaParser::GetSatellites);
        AddQuery("GetMovement", ParserEvent::Movement, &NmeaParser::GetMovement);
        AddQuery("GetQuality", ParserEvent::Quality, &NmeaParser::GetQuality);
        AddQuery("GetComStatus", ParserEvent::ComStatus, &NmeaParser::GetComStatus);
    }

    // The answer is told as the event would be.
    template <typename Result, typename... Arguments>
    void AddQuery(const std::string& name, ParserEvent event,
                  Ref<Result> (NmeaParser::*query)(Arguments...)) {
        dialogue_.AddOperation(name, [this, event, query](Arguments... arguments) {
            const Ref<Record> object = ((*parser_).*query)(arguments...);
            return object ? EventLog::Describe(event, *object) : "(none)";
        });
    }

    void AddPort() {
        dialogue_.Add("SetComPort", &NmeaParser::SetComPort);
        dialogue_.Add("SetBaudRate", &NmeaParser::SetBaudRate);
        dialogue_.Add("SetPortEnabled", &NmeaParser::SetPortEnabled);
        dialogue_.Add("SetDirectDelivery", &NmeaParser::SetDirectDelivery);
        dialogue_.AddOperation("WriteNothing", [this] { parser_->WriteData(nullptr); });
        dialogue_.AddOperation("Write", [this](const std::string& text) {
            parser_->WriteData(
                MakeRef<ByteBlock>(std::vector<std::uint8_t>(text.begin(), text.end())));
            port_.WaitForCalls(CommCall::Write, 1);
        });
        dialogue_.Add("Written", [this] { return port_.written(); });
        dialogue_.Add("Hear", [this](const std::string& body) { port_.Feed(Line(body)); });
        dialogue_.Add("HearPlain",
                      [this](const std::string& body) { port_.Feed("$" + body + "\r\n"); });
        dialogue_.Add("HandleUntil", [this](const std::string& last) { return HandleUntil(last); });
        dialogue_.Add("Fail", [this](const std::string& call, int nth, std::uint32_t error) {
            port_.FailCall(CommCallOf(call), nth, error);
        });
        dialogue_.Add("PortIsOpen", [this] { return port_.isOpen(); });
        dialogue_.Add("CallCount", [this](const std::string& call) {
            return port_.CallCount(CommCallOf(call));
        });
        dialogue_.Add("Rate", [this] { return port_.state().BaudRate; });
        dialogue_.Add("PortStatus", [this] {
            const Ref<ComStatus> status = parser_->GetComStatus();
            return std::to_string(status->ComPort()) + "@" + std::to_string(status->BaudRate()) +
                   (status->ValidNmea() ? " NMEA" : "") + (status->ValidFix() ? " fix" : "");
        });
    }

    // What happens between the threads of the reader and of the client.
    void AddHandOver() {
        dialogue_.AddOperation("RefuseWindows", [this] {
            machine_.RefuseWindows(0);
            parser_ = MakeRef<NmeaParser>(machine_);
            parser_->SetEventSink(log_.Sink());
        });
        dialogue_.Add("LimitMessages",
                      [this](std::size_t limit) { machine_.messages().SetLimit(limit); });
        dialogue_.Add("AwaitMessages", [this](std::size_t count) {
            EXPECT_TRUE(Await([&] { return machine_.messages().Waiting() >= count; }));
        });
        dialogue_.Add("AwaitNmea", [this] {
            EXPECT_TRUE(Await([this] { return parser_->GetComStatus()->ValidNmea(); }));
        });
        dialogue_.Add("AwaitEvents", [this](int count) {
            EXPECT_TRUE(Await([&] { return log_.count >= count; }));
        });
        dialogue_.Add("Error", [this] { return ErrorOf(parser_->error()); });
        dialogue_.Add("AwaitFix", [this] {
            EXPECT_TRUE(Await([this] { return parser_->GetComStatus()->ValidFix(); }));
        });
        dialogue_.Add("Handle", [this] {
            machine_.messages().HandleAll();
            return log_.Take();
        });
        dialogue_.Add("Waiting", [this] { return machine_.messages().Waiting(); });
        dialogue_.Add("IsOnly", [this] { return parser_.IsOnly(); });
        dialogue_.Add("Release", [this] {
            parser_->ShutDown();
            parser_.Reset();
        });
    }
};

TEST_P(ParserDialogue, Holds) {
    dialogue_.Hold(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, ParserDialogue,
                         testing::ValuesIn(ReadGroups("parser/dialogues.txt")), NameOfGroup);

}  // namespace
}  // namespace kavrel
