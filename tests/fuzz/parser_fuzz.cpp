// A client's life with a parser: settings, pieces of text, queries, and a sink that keeps what it
// is handed, changes sentences and calls the parser again from inside an event.
//
// What was handed out must never change, settings must be refused exactly outside their ranges,
// and nothing may be left over.
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/fuzz.h"
#include "parser/nmea_parser.h"
#include "unit/nmea/sentence_text.h"
#include "unit/parser/describe.h"

namespace kavrel {
namespace {

class Client {
  public:
    explicit Client(Input input) : input_(input) { SetSink(0x1FF); }

    void Run() {
        while (!input_.IsAtEnd())
            Step();
        parser_.Reset();
        CheckKept();
    }

  private:
    static constexpr int kMaxDepth = 3;
    static constexpr std::size_t kMaxKept = 16;

    struct Kept {
        ParserEvent event;
        Ref<Record> object;
        std::string description;
    };

    // Letters, so that seeds can be written by hand.
    void Step() {
        switch (input_.Take<char>()) {
            case 'P':
                return Parse(input_.TakeText(255));
            case 'L':  // a line that fits its checksum
                return Parse(Line(input_.TakeText(120)));
            case 'D':
                return SetDatum(input_.Take<std::int16_t>());
            case 'I':
                return SetInterval(input_.Take<std::int16_t>(), input_.Take<std::int8_t>());
            case 'A':
                return parser_->SetAllEventsGeneric(input_.TakeBool());
            case 'N':
                return parser_->SetNoEvents(hasNoEvents_ = input_.TakeBool());
            case 'Q':
                return parser_->SetQueuedDelivery(isQueued_ = input_.TakeBool());
            case 'C':
                return parser_->SetChecksumMandatory(input_.TakeBool());
            case 'S':
                return SetSink(input_.Take<std::uint16_t>());
            case 'U':
                return parser_->Dispatch({WorkKind::ComStatus, nullptr});
            case 'E':
                return EmptyQueue();
            case 'G':
                return Ask();
            case 'K':
                return CheckKept();
            default:
                return;
        }
    }

    bool HasFailed() { return parser_->error().IsSet(); }

    void Parse(const std::string& text) {
        parser_->Parse(text);
        Check(!HasFailed());
    }

    void SetDatum(std::int16_t datum) {
        parser_->SetGpsDatum(datum);
        Check(HasFailed() == (datum < 1 || datum > 28));
    }

    void SetInterval(std::int16_t ms, std::int8_t type) {
        parser_->SetEventInterval(ms, type);
        Check(HasFailed() == (type < 5 || type > 8));
    }

    // One bit a handler.
    void SetSink(unsigned mask) {
        mask_ = mask;
        EventSink sink;
        sink.context = this;
        for (std::size_t i = 0; i < sink.callbacks.size(); ++i) {
            if ((mask >> i & 1U) != 0) sink.callbacks[i] = &Client::OnEvent;
        }
        parser_->SetEventSink(sink);
    }

    // The queue waits for ever when it is empty, so an object of our own goes in last.
    void EmptyQueue() {
        if (!isQueued_ || hasNoEvents_) return;
        const Ref<Record> last = MakeRef<ComStatus>(ComStatusValues{});
        parser_->Dispatch({WorkKind::ComStatus, last});
        for (;;) {
            std::optional<QueuedEvent> event = parser_->TakeQueuedEvent();
            Check(event.has_value() && event->object);
            if (event->object == last) return;
            Keep(EventOf(event->code), *event->object);
        }
    }

    void Ask() {
        const std::int32_t wanted = input_.Take<std::int8_t>();
        KeepAnswer(ParserEvent::GpsFix, parser_->GetGpsFix(0, wanted));
        KeepAnswer(ParserEvent::Satellites, parser_->GetSatellites(0));
        KeepAnswer(ParserEvent::Movement, parser_->GetMovement(0));
        KeepAnswer(ParserEvent::Quality, parser_->GetQuality(0));
        const Ref<ComStatus> status = parser_->GetComStatus();
        Check(!HasFailed());
        Keep(ParserEvent::ComStatus, *status);
    }

    void KeepAnswer(ParserEvent event, const Ref<Record>& answer) {
        Check(HasFailed() == !hasNoEvents_);
        Check(hasNoEvents_ || !answer);
        if (answer) Keep(event, *answer);
    }

    static void OnEvent(void* context, ParserEvent event, Record& object) {
        static_cast<Client*>(context)->Take(event, object);
    }

    void Take(ParserEvent event, Record& object) {
        Check(!hasNoEvents_ && (mask_ >> static_cast<unsigned>(event) & 1U) != 0);
        const bool isDecoded =
            event == ParserEvent::Gga || event == ParserEvent::Gll || event == ParserEvent::Rmc;
        // These are called even when everything else is queued.
        Check(!isQueued_ || isDecoded);
        Keep(event, object);
        if (depth_ == kMaxDepth || input_.IsAtEnd()) return;
        ++depth_;
        if (isDecoded) Change(static_cast<DecodedSentence&>(object).sentence());
        if (event == ParserEvent::Generic) Change(static_cast<NmeaSentence&>(object));
        if (input_.TakeBool()) Step();
        --depth_;
    }

    // A client may do that, and changes what others see of the sentence.
    void Change(NmeaSentence& sentence) {
        switch (input_.Take<char>()) {
            case 'T':
                return sentence.SetText(input_.TakeText(255));
            case 'F':
                return sentence.SetField(input_.Take<std::int8_t>(), input_.TakeText(60));
            case 'C':
                return sentence.SetCommand(input_.TakeText(6));
            default:
                sentence.Field(input_.Take<std::int8_t>());
        }
    }

    void Keep(ParserEvent event, Record& object) {
        const std::string description = Describe(event, object);
        if (event == ParserEvent::Generic || kept_.size() == kMaxKept) return;
        kept_.push_back({event, Ref<Record>::Share(&object), description});
    }

    void CheckKept() {
        for (const Kept& kept : kept_)
            Check(Describe(kept.event, *kept.object) == kept.description);
    }

    Input input_;
    Ref<NmeaParser> parser_ = MakeRef<NmeaParser>();
    std::vector<Kept> kept_;
    unsigned mask_ = 0;
    bool hasNoEvents_ = false;
    bool isQueued_ = false;
    int depth_ = 0;
};

}  // namespace
}  // namespace kavrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return kavrel::RunSession<kavrel::Client>(data, size);
}
