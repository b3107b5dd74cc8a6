#include "nmea/nmea_sentence.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "nmea/checksum.h"

namespace kavrel {
namespace {

// "$" and five characters of talker and formatter.
constexpr std::size_t kAddressLength = 6;

// What a rebuilt text has room for; what lies beyond is cut off.
constexpr std::size_t kTextCapacity = 255;

constexpr bool HasRoomForChecksum(std::size_t textSize) {
    return textSize + 2 < kTextCapacity;
}

// Collects a rebuilt text.
class TextBuilder {
  public:
    void Append(std::string_view text) {
        const std::size_t length = std::min(text.size(), kTextCapacity - size_);
        std::copy_n(text.begin(), length, buffer_.begin() + size_);
        size_ += length;
    }
    bool IsFull() const { return size_ == kTextCapacity; }
    std::string_view text() const { return {buffer_.data(), size_}; }

  private:
    std::array<char, kTextCapacity> buffer_;
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
    if (!HasRoomForChecksum(builder.text().size())) return;
    Checksum checksum;
    checksum.Add(builder.text().substr(1));
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

TextView NmeaSentence::TextAsGiven() {
    const std::string_view text = Text();
    if (wide_ == nullptr) return text;
    return {text, wide_->text};
}

void NmeaSentence::SetText(const TextView& text) {
    SetText(text.narrow, text.narrow.find('*'));
    if (!hasCommand_ || !NeedsWide(text.wide)) return;
    wide_ = std::make_unique<WideForm>();
    wide_->text = text.wide;
    wide_->fullCommand = text.wide.substr(1, fullCommand_.size());
}

void NmeaSentence::SetText(std::string_view text, std::size_t star) {
    error().Clear();
    wide_.reset();
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
    return FieldAsGiven(index).narrow;
}

TextView NmeaSentence::FieldAsGiven(std::int32_t index) {
    error().Clear();
    const std::int32_t number = ((index & 0xFF) ^ 0x80) - 0x80;  // the low 8 bits, signed
    if (number < 1 || number > fieldCount_) {
        error().Set(kErrorIndexOutOfBounds, Message::IndexOutOfBounds);
        return {};
    }
    return FindFieldAsGiven(number);
}

std::string_view NmeaSentence::FindField(std::int32_t number) const {
    return editedFields_ != nullptr ? editedFields_->Find(number).narrow : FieldInText(number);
}

TextView NmeaSentence::FindFieldAsGiven(std::int32_t number) const {
    if (editedFields_ != nullptr) return editedFields_->Find(number);
    const std::string_view field = FieldInText(number);
    if (wide_ == nullptr || field.empty()) return field;
    const auto begin = static_cast<std::size_t>(field.data() - text_.data());
    const std::u16string_view text = wide_->text;
    return {field, text.substr(begin, field.size())};
}

TextView NmeaSentence::FullCommandAsGiven() const {
    if (wide_ == nullptr) return FullCommand();
    return {FullCommand(), wide_->fullCommand};
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
            fields->Set(number, FindFieldAsGiven(number));
        }
        editedFields_ = std::move(fields);
        plainFields_ = 0;
    }
    ++changeCount_;
    isDirty_ = true;
    return *editedFields_;
}

void NmeaSentence::SetField(std::int32_t number, const TextView& value) {
    error().Clear();
    EditFields().Set(number, value);
    fieldCount_ = std::max(fieldCount_, number);
}

void NmeaSentence::SetCommand(const TextView& command) {
    error().Clear();
    if (command.narrow.data() == nullptr) {
        error().Set(kErrorInvalidArgument, Message::NullCommand);
        return;
    }
    constexpr std::string_view kDefaultTalker = "GP";
    const std::size_t length = command.narrow.size();
    if (length != 3 && length != fullCommand_.size()) {
        error().Set(kErrorInvalidArgument, Message::CommandLength);
        return;
    }
    EditFields();
    std::u16string wide;
    if (NeedsWide(command.wide)) {
        if (length == 3) AppendWide(wide, kDefaultTalker);
        AppendWide(wide, command);
    }
    if (wide_ == nullptr && !wide.empty()) wide_ = std::make_unique<WideForm>();
    if (wide_ != nullptr) wide_->fullCommand = std::move(wide);
    if (length == 3) std::copy(kDefaultTalker.begin(), kDefaultTalker.end(), fullCommand_.begin());
    std::copy_backward(command.narrow.begin(), command.narrow.end(), fullCommand_.end());
    hasCommand_ = true;
    type_ = SentenceTypeOf(Command());
}

bool NmeaSentence::HasWidePart() const {
    return (wide_ != nullptr && !wide_->fullCommand.empty()) || editedFields_->HasWideText();
}

void NmeaSentence::Rebuild() {
    textWithLineEnd_.clear();
    isDirty_ = false;
    if (HasWidePart()) {
        RebuildWide();
        return;
    }
    wide_.reset();
    TextBuilder builder;
    builder.Append("$");
    builder.Append(FullCommand());
    for (std::int32_t number = 1; number <= fieldCount_ && !builder.IsFull(); ++number) {
        builder.Append(",");
        builder.Append(FieldOrEmpty(number));
    }
    AppendChecksum(builder);
    text_.Assign(builder.text());
}

// The same text from 16-bit characters, of which the checksum takes the low 8 bits.
void NmeaSentence::RebuildWide() {
    std::u16string text = u"$";
    AppendWide(text, FullCommandAsGiven());
    for (std::int32_t number = 1; number <= fieldCount_ && text.size() < kTextCapacity; ++number) {
        text.push_back(u',');
        AppendWide(text, FindFieldAsGiven(number));
    }
    text.resize(std::min(text.size(), kTextCapacity));
    if (HasRoomForChecksum(text.size())) {
        Checksum checksum;
        for (std::size_t i = 1; i < text.size(); ++i)
            checksum.Add(static_cast<char>(text[i] & 0xFF));
        const std::array<char, 2> digits = checksum.Digits();
        text.push_back(u'*');
        AppendWide(text, std::string_view(digits.data(), digits.size()));
    }
    text_.Assign(Narrowed(text));
    if (wide_ == nullptr) wide_ = std::make_unique<WideForm>();
    wide_->text = std::move(text);
}

}  // namespace kavrel
