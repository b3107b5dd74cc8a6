// NmeaSentence: one sentence, as text and as numbered fields. Either side can be changed, and the
// text is rebuilt with a fresh checksum when it is next read.
//
// Text is 8-bit, as NMEA 0183 is. What a host gave with characters of more bits comes back as it
// was by the members ...AsGiven; the others have substitutes there. The text stands without CR LF.
// Fields are numbered from 1 by the comma that opens them, so the address ("GPGGA") is no field and
// the checksum belongs to none.
//
// Thread safety: none. A sentence is shared by the engine and the receivers of its events; who
// changes it changes what the others see.
// Views returned are valid until the sentence is next changed.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/record.h"
#include "base/small_text.h"
#include "base/text_view.h"
#include "nmea/field_list.h"
#include "nmea/sentence_type.h"
#include "nmea/talker.h"

namespace kavrel {

class NmeaSentence final : public Record {
  public:
    NmeaSentence() = default;

    // With a text, see SetText.
    NmeaSentence(std::string_view text, std::size_t star) { SetText(text, star); }
    void Assign(std::string_view text, std::size_t star) { SetText(text, star); }

    // The text, rebuilt first if command or fields were changed; empty for an empty sentence.
    std::string_view Text();

    TextView TextAsGiven();

    // The text followed by CR LF, as it is written to a receiver.
    std::string_view TextWithLineEnd();

    // Replaces everything. A text of less than 6 characters leaves the sentence empty; the first
    // character is taken for the "$" unseen.
    void SetText(const TextView& text);

    // The same, with 8-bit characters only, for a caller who knows where the first "*" is; npos
    // when there is none.
    void SetText(std::string_view text, std::size_t star);

    // The text of field `index`, which is first cut to a signed 8-bit number: 257 reads field 1.
    // Empty when no such field is stored.
    // Errors: 10004 "Index out of bounds" outside 1..FieldCount().
    std::string_view Field(std::int32_t index);

    TextView FieldAsGiven(std::int32_t index);

    // The same for decoders: any number, and empty instead of an error.
    std::string_view FieldOrEmpty(std::int32_t number) const {
        const std::size_t index = static_cast<std::size_t>(number) - 1;
        if (index >= plainFields_) return FindField(number);
        const std::size_t begin = commas_[index] + std::size_t{1};
        return {text_.data() + begin, commas_[index + 1] - begin};
    }

    // The highest field number.
    std::int32_t FieldCount() const { return fieldCount_; }

    // Sets or replaces one field. Any number is stored; those below 1 never get into the text.
    void SetField(std::int32_t number, const TextView& value);

    // The three-character sentence formatter ("GGA"); empty when there is none.
    std::string_view Command() const { return FullCommand().substr(hasCommand_ ? 2 : 0); }

    // The five-character talker and formatter ("GPGGA"); empty when there is none.
    std::string_view FullCommand() const {
        return {fullCommand_.data(), hasCommand_ ? fullCommand_.size() : 0};
    }

    TextView CommandAsGiven() const { return FullCommandAsGiven().substr(hasCommand_ ? 2 : 0); }
    TextView FullCommandAsGiven() const;

    // The two letters before the formatter; zeros when there is none.
    Talker TalkerId() const {
        if (!hasCommand_) return {};
        return {fullCommand_[0], fullCommand_[1]};
    }

    // Sets both: 3 characters get the talker "GP", 5 are taken as they are.
    // Errors, with nothing changed: 10003 "Null command not allowed" for a view without data,
    // 10003 "Command must be 3 or 5 characters long".
    void SetCommand(const TextView& command);

    SentenceType Type() const { return type_; }

    // Goes up with every change, so that what was decoded need not be decoded again.
    std::uint32_t ChangeCount() const { return changeCount_; }

  private:
    // Where the commas of the text are, for as many as ordinary sentences have.
    static constexpr std::size_t kKnownCommas = 24;
    static constexpr std::size_t kInlineTextSize = 96;

    // What does not fit into 8 bits. Each text is whole, or empty while its 8-bit form is enough.
    struct WideForm {
        std::u16string text;
        std::u16string fullCommand;
    };

    void FindCommas(std::size_t star);
    std::string_view FindField(std::int32_t number) const;
    TextView FindFieldAsGiven(std::int32_t number) const;
    std::string_view FieldInText(std::int32_t number) const;
    FieldList& EditFields();
    bool HasWidePart() const;
    void Rebuild();
    void RebuildWide();

    SmallText<kInlineTextSize> text_;
    std::array<std::uint32_t, kKnownCommas + 1> commas_;  // one more for the end of the last field
    std::size_t star_ = 0;  // where the first "*" of the text is, or its end
    // So many fields from the first on reach from their comma to the next entry of commas_. In a
    // receiver's sentence these are all.
    std::size_t plainFields_ = 0;
    std::uint32_t changeCount_ = 0;
    std::array<char, 5> fullCommand_{};
    SentenceType type_ = SentenceType::Other;
    bool hasCommand_ = false;
    bool isDirty_ = false;
    std::int32_t fieldCount_ = 0;
    std::unique_ptr<FieldList> editedFields_;  // null while the fields are those of the text
    std::string textWithLineEnd_;              // empty until asked for
    std::unique_ptr<WideForm> wide_;           // null for nearly every sentence
};

}  // namespace kavrel
