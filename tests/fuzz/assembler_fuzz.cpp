// A stream of operations on an assembler and on the sentences that come out of it, compared with
// the rules in their plainest form.
#include <optional>
#include <string>
#include <utility>

#include "fuzz/fuzz.h"
#include "fuzz/reference_assembler.h"
#include "fuzz/reference_sentence.h"
#include "nmea/sentence_assembler.h"

namespace kavrel {
namespace {

class Session {
  public:
    explicit Session(Input input) : input_(input) {}

    void Run() {
        while (!input_.IsAtEnd())
            Step(input_.Take<std::uint8_t>());
    }

  private:
    // Letters, so that seeds can be written by hand.
    void Step(std::uint8_t operation) {
        switch (operation) {
            case 'A':
                return Append(input_.TakeText(255));
            case 'L':  // a line that fits its checksum
                return Append(Line(input_.TakeText(100)));
            case 'R':  // much of the same
                return Append(std::string(input_.Take<std::uint16_t>(), input_.Take<char>()));
            case 'M':
                return SetMandatory(input_.TakeBool());
            case 'T':
                return TakeOne();
            case 'S':
                return SetText(input_.TakeText(255));
            case 'F':
                return SetField(input_.Take<std::int8_t>(), input_.TakeText(60));
            case 'H':
                return SetField(input_.Take<std::int32_t>(), input_.TakeText(5));
            case 'C':
                return SetCommand(input_.TakeText(6));
            case 'G':
                return CompareField(input_.Take<std::int32_t>());
            default:
                return CompareTexts();
        }
    }

    void Append(const std::string& text) {
        Check(assembler_.Append(text) == (text.find('\n') != text.npos));
        referenceAssembler_.Append(text);
    }

    void SetMandatory(bool isMandatory) {
        assembler_.SetChecksumMandatory(isMandatory);
        referenceAssembler_.SetChecksumMandatory(isMandatory);
    }

    // The sentence taken is the one that the operations on sentences work on from now on.
    void TakeOne() {
        const std::optional<std::string> expected = referenceAssembler_.Next();
        Check(assembler_.HasSentence() == expected.has_value());
        if (!expected) return;
        assembler_.GiveBack(std::move(sentence_));  // with whatever was done to it
        sentence_ = assembler_.TakeSentence();
        reference_.SetText(*expected);
        CompareTexts();
    }

    void SetText(const std::string& text) {
        sentence_->SetText(text);
        reference_.SetText(text);
    }

    void SetField(std::int32_t number, const std::string& value) {
        sentence_->SetField(number, value);
        reference_.SetField(number, value);
        Check(!sentence_->error().IsSet());
    }

    void SetCommand(const std::string& command) {
        sentence_->SetCommand(command);
        Check(!sentence_->error().IsSet() == reference_.SetCommand(command));
    }

    void CompareField(std::int32_t index) {
        std::string expected;
        const bool isInBounds = reference_.Field(index, expected);
        Check(sentence_->Field(index) == expected);
        Check(!sentence_->error().IsSet() == isInBounds);
    }

    void CompareTexts() {
        Check(sentence_->Text() == reference_.Text());
        Check(sentence_->TextWithLineEnd() == reference_.Text() + "\r\n");
        Check(sentence_->FieldCount() == reference_.FieldCount());
        Check(sentence_->FullCommand() == reference_.FullCommand());
    }

    Input input_;
    SentenceAssembler assembler_;
    ReferenceAssembler referenceAssembler_;
    Ref<NmeaSentence> sentence_ = MakeRef<NmeaSentence>();
    ReferenceSentence reference_;
};

}  // namespace
}  // namespace kavrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return kavrel::RunSession<kavrel::Session>(data, size);
}
