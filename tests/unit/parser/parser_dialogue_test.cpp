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
        dialogue_.Add("Parse", [this](const std::string& line) {
            parser_->Parse(line + "\r\n");
            return log_.Take() + ErrorOf(parser_->error());
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
        dialogue_.Add("GetGpsFix", [this](int timeoutMs, int fixType) {
            return Answer(ParserEvent::GpsFix, parser_->GetGpsFix(timeoutMs, fixType));
        });
        dialogue_.Add("GetSatellites", [this](int timeoutMs) {
            return Answer(ParserEvent::Satellites, parser_->GetSatellites(timeoutMs));
        });
        dialogue_.Add("GetMovement", [this](int timeoutMs) {
            return Answer(ParserEvent::Movement, parser_->GetMovement(timeoutMs));
        });
        dialogue_.Add("GetQuality", [this](int timeoutMs) {
            return Answer(ParserEvent::Quality, parser_->GetQuality(timeoutMs));
        });
        dialogue_.Add("GetComStatus",
                      [this] { return Answer(ParserEvent::ComStatus, parser_->GetComStatus()); });
        dialogue_.Add("TakeQueued", [this] {
            const std::optional<QueuedEvent> event = parser_->TakeQueuedEvent();
            if (!event) return std::string("(none)");
            return std::to_string(static_cast<int>(event->code)) + " " +
                   EventLog::Describe(EventOf(event->code), *event->object);
        });
        dialogue_.Add("StopQueue", [this] { parser_->StopQueue(); });
        AddPort();
    }

    Dialogue<NmeaParser> dialogue_{[this]() -> NmeaParser& { return *parser_; }};

  private:
    void AddPort() {
        dialogue_.Add("SetComPort", &NmeaParser::SetComPort);
        dialogue_.Add("SetBaudRate", &NmeaParser::SetBaudRate);
        dialogue_.Add("SetPortEnabled", &NmeaParser::SetPortEnabled);
        dialogue_.Add("WriteNothing", [this] {
            parser_->WriteData(nullptr);
            return ErrorOf(parser_->error());
        });
        dialogue_.Add("Hear", [this](const std::string& body) { port_.Feed(Line(body)); });
        dialogue_.Add("HandleUntil", [this](const std::string& last) { return HandleUntil(last); });
        dialogue_.Add("Fail", [this](const std::string& call, int nth, std::uint32_t error) {
            port_.FailCall(CommCallOf(call), nth, error);
        });
        dialogue_.Add("PortIsOpen", [this] { return port_.isOpen(); });
        dialogue_.Add("TimesOpened", [this] { return port_.CallCount(CommCall::Open); });
        dialogue_.Add("Rate", [this] { return port_.state().BaudRate; });
        dialogue_.Add("PortStatus", [this] {
            const Ref<ComStatus> status = parser_->GetComStatus();
            return std::to_string(status->ComPort()) + "@" + std::to_string(status->BaudRate()) +
                   (status->ValidNmea() ? " NMEA" : "") + (status->ValidFix() ? " fix" : "");
        });
    }

    std::string Answer(ParserEvent event, const Ref<Record>& object) {
        if (parser_->error().IsSet()) return "! " + ErrorOf(parser_->error());
        return object ? EventLog::Describe(event, *object) : "(none)";
    }
};

TEST_P(ParserDialogue, Holds) {
    dialogue_.Hold(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, ParserDialogue,
                         testing::ValuesIn(ReadGroups("parser/dialogues.txt")), NameOfGroup);

}  // namespace
}  // namespace kavrel
