#include "nmea/nmea_sentence.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "nmea/checksum.h"

namespace kavrel {
namespace {

// "$" and five characters of talker and formatter.
constexpr std::size_t kAddressLength = 6;

// Collects a rebuilt text; what lies beyond the limit is cut off.
class TextBuilder {
  public:
    static constexpr std::size_t kCapacity = 255;

    void Append(std::string_view text) {
        const std::size_t length = std::min(text.size(), kCapacity - size_);
        std::copy_n(text.begin(), length, buffer_.begin() + size_);
        size_ += length;
    }
    bool IsFull() const { return size_ == kCapacity; }
    std::string_view text() const { return {buffer_.data(), size_}; }

  private:
    std::array<char, kCapacity> buffer_;
    std::size_t size_ = 0;
};

// Calls found(position) for every comma, in order. Eight characters at a time: a loop that decides
// for each of them is what most of the time would go into.
template <typename F>
void ForEachComma(std::string_view text, const F& found) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    constexpr std::uint64_t kLowBits = 0x7F * kOnes;
    static_assert(std::endian::native == std::endian::little);
    std::size_t at = 0;
    for (; at + sizeof kOnes <= text.size(); at += sizeof kOnes) {
        std::uint64_t eight;
        std::memcpy(&eight, text.data() + at, sizeof eight);
        eight ^= ',' * kOnes;  // commas become zero
        // The high bit of each byte that is zero, and of no other.
        std::uint64_t zeros = ~(((eight & kLowBits) + kLowBits) | eight | kLowBits);
        for (; zeros != 0; zeros &= zeros - 1) {
            found(at + static_cast<std::size_t>(std::countr_zero(zeros)) / 8);
        }
    }
    for (; at < text.size(); ++at) {
        if (text[at] == ',') found(at);
    }
}

void AppendChecksum(TextBuilder& builder) {
    if (builder.text().size() + 2 >= TextBuilder::kCapacity) return;
    Checksum checksum;
    for (const char c : builder.text().substr(1))
        checksum.Add(c);
    const std::array<char, 2> digits = checksum.Digits();
    builder.Append("*");
    builder.Append({digits.data(), digits.size()});
}

}  // namespace

std::string_view NmeaSentence::Text() {
    error().Clear();
    if (isDirty_) Rebuild();
    return text_.view();
}

std::string_view NmeaSentence::TextWithLineEnd() {
    const std::string_view text = Text();
    if (textWithLineEnd_.empty()) {
        textWithLineEnd_.reserve(text.size() + 2);
        textWithLineEnd_.append(text).append("\r\n");
    }
    return textWithLineEnd_;
}

void NmeaSentence::SetText(std::string_view text, std::size_t star) {
    error().Clear();
    textWithLineEnd_.clear();
    editedFields_.reset();
    ++changeCount_;
    isDirty_ = false;
    hasCommand_ = text.size() >= kAddressLength;
    text_.Assign(hasCommand_ ? text : std::string_view());
    if (hasCommand_) std::copy_n(text_.data() + 1, fullCommand_.size(), fullCommand_.begin());
    type_ = SentenceTypeOf(Command());
    FindCommas(star);
}

void NmeaSentence::FindCommas(std::size_t star) {
    const std::string_view text = text_.view();
    std::size_t count = 0;
    ForEachComma(text, [&](std::size_t at) {
        if (count < kKnownCommas) commas_[count] = static_cast<std::uint32_t>(at);
        ++count;
    });
    fieldCount_ = static_cast<std::int32_t>(count);
    star_ = std::min(star, text.size());

    plainFields_ = std::min(count, kKnownCommas);
    while (plainFields_ != 0 && commas_[plainFields_ - 1] > star_)
        --plainFields_;
    if (plainFields_ == 0) return;
    if (plainFields_ == count) {
        commas_[count] = static_cast<std::uint32_t>(star_);
    } else {
        --plainFields_;  // the last of them ends at the star or at a comma that is not known
    }
}

std::string_view NmeaSentence::Field(std::int32_t index) {
    error().Clear();
    const std::int32_t number = ((index & 0xFF) ^ 0x80) - 0x80;  // the low 8 bits, signed
    if (number < 1 || number > fieldCount_) {
        error().Set(kErrorIndexOutOfBounds, Message::IndexOutOfBounds);
        return {};
    }
    return FieldOrEmpty(number);
}

std::string_view NmeaSentence::FindField(std::int32_t number) const {
    return editedFields_ != nullptr ? editedFields_->Find(number) : FieldInText(number);
}

std::string_view NmeaSentence::FieldInText(std::int32_t number) const {
    if (number < 1 || number > fieldCount_) return {};
    const std::string_view text = text_.view();

    const auto index = static_cast<std::size_t>(number - 1);
    std::size_t comma = commas_[std::min(index, kKnownCommas - 1)];
    for (std::size_t i = kKnownCommas - 1; i < index; ++i)
        comma = text.find(',', comma + 1);

    const std::size_t begin = comma + 1;
    std::size_t end = text.size();
    if (number < fieldCount_) {
        end = index + 1 < kKnownCommas ? commas_[index + 1] : text.find(',', begin);
    }
    // The first "*" is nearly always behind all fields but the last.
    if (star_ < end) end = std::min(star_ < begin ? text.find('*', begin) : star_, end);
    return text.substr(begin, end - begin);
}

// The list to change, which from now on stands for the fields; filled from the text when new. The
// sentence counts as changed.
FieldList& NmeaSentence::EditFields() {
    if (editedFields_ == nullptr) {
        auto fields = std::make_unique<FieldList>();
        for (std::int32_t number = 1; number <= fieldCount_; ++number) {
            fields->Set(number, FieldInText(number));
        }
        editedFields_ = std::move(fields);
        plainFields_ = 0;
    }
    ++changeCount_;
    isDirty_ = true;
    return *editedFields_;
}

void NmeaSentence::SetField(std::int32_t number, std::string_view value) {
    error().Clear();
    EditFields().Set(number, value);
    fieldCount_ = std::max(fieldCount_, number);
}

void NmeaSentence::SetCommand(std::string_view command) {
    error().Clear();
    if (command.data() == nullptr) {
        error().Set(kErrorInvalidArgument, Message::NullCommand);
        return;
    }
    constexpr std::string_view kDefaultTalker = "GP";
    if (command.size() == 3) {
        std::copy(kDefaultTalker.begin(), kDefaultTalker.end(), fullCommand_.begin());
    } else if (command.size() != fullCommand_.size()) {
        error().Set(kErrorInvalidArgument, Message::CommandLength);
        return;
    }
    EditFields();
    std::copy_backward(command.begin(), command.end(), fullCommand_.end());
    hasCommand_ = true;
    type_ = SentenceTypeOf(Command());
}

void NmeaSentence::Rebuild() {
    TextBuilder builder;
    builder.Append("$");
    builder.Append(FullCommand());
    for (std::int32_t number = 1; number <= fieldCount_ && !builder.IsFull(); ++number) {
        builder.Append(",");
        builder.Append(FieldOrEmpty(number));
    }
    AppendChecksum(builder);
    text_.Assign(builder.text());
    textWithLineEnd_.clear();
    isDirty_ = false;
}

}  // namespace kavrel
