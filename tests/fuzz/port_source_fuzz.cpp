// A serial port that says anything in pieces of any size and fails where it likes: what comes out
// is what the plain rules make of the bytes, up to a failure, and the port is always closed.
//
// The port's own threads run as ever; nothing sleeps, and what is expected does not depend on when
// they do.
#include <optional>
#include <string>
#include <vector>

#include "fuzz/fuzz.h"
#include "fuzz/reference_assembler.h"
#include "parser/port_source.h"
#include "platform/host/scripted_machine.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

constexpr std::int32_t kPort = 2;
constexpr std::uint32_t kError = 21;

class Session {
  public:
    explicit Session(Input input) : input_(input) {}

    void Run() {
        const bool isMandatory = input_.TakeBool();
        source_.SetChecksumMandatory(isMandatory);
        reference_.SetChecksumMandatory(isMandatory);
        const bool mayFail = PlanFailures();
        if (Open()) {
            Hear();
            Compare(mayFail);
        } else {
            Check(mayFail);
        }
        source_.End();
        Check(!device_.isOpen());
    }

  private:
    bool PlanFailures() {
        const std::size_t count = input_.TakeBelow(3);
        for (std::size_t i = 0; i < count; ++i) {
            const auto call =
                static_cast<CommCall>(input_.TakeBelow(static_cast<std::size_t>(CommCall::Count)));
            device_.FailCall(call, 1 + static_cast<int>(input_.TakeBelow(4)), kError);
        }
        return count != 0;
    }

    bool Open() {
        ErrorSlot error;
        const PortChoice choice{.comPort = kPort, .baudRate = 4800};
        const bool isOpen = source_.OpenFixedPort(choice, error);
        Check(isOpen == !error.IsSet());
        return isOpen && source_.Begin(choice, error);
    }

    // The rest of the input, then a sentence to know the end by, and enough to fill the last read.
    void Hear() {
        while (!input_.IsAtEnd())
            Feed(input_.TakeBool() ? Line(input_.TakeText(100)) : input_.TakeText(200) + "\r\n");
        Feed(Line(kEnd));
        device_.Feed(std::string(600, ' '));
    }

    // Whole lines, so short that wherever reads cut them none is lost for want of room.
    void Feed(const std::string& text) {
        reference_.Append(text);
        while (const std::optional<std::string> sentence = reference_.Next())
            expected_.push_back(sentence->size() < kShortest ? std::string() : *sentence);
        device_.Feed(text);
    }

    void Compare(bool mayFail) {
        const std::string end = Sentence(kEnd);
        std::size_t heard = 0;
        for (;;) {
            const auto events = source_.Events();
            const std::optional<std::size_t> woken = WaitAny(events, kWaitForever);
            Check(woken.has_value());
            events[*woken]->Reset();
            while (const Ref<NmeaSentence> sentence = source_.TakeSentence()) {
                Check(heard < expected_.size() && sentence->Text() == expected_[heard]);
                ++heard;
                if (sentence->Text() == end && heard == expected_.size()) return;
            }
            if (*woken == PortSource::Failed) {
                Check(mayFail);
                return;
            }
        }
    }

    static constexpr std::string_view kEnd = "PKVRL,END";
    static constexpr std::size_t kShortest = 6;  // of a sentence; a shorter one reads as empty

    Input input_;
    ScriptedMachine machine_;
    ScriptedCommDevice& device_ = machine_.Port(kPort);
    PortSource source_{machine_};
    ReferenceAssembler reference_;
    std::vector<std::string> expected_;
};

}  // namespace
}  // namespace kavrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return kavrel::RunSession<kavrel::Session>(data, size);
}
