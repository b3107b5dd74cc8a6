// The rules of the sentence record in their plainest form, to compare NmeaSentence with.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "unit/nmea/sentence_text.h"

namespace kavrel {

class ReferenceSentence {
  public:
    void SetText(const std::string& text) {
        *this = ReferenceSentence();
        if (text.size() < 6) return;
        text_ = text;
        fullCommand_ = text.substr(1, 5);
        for (std::size_t at = 0; at < text.size(); ++at) {
            if (text[at] != ',') continue;
            const std::size_t end = std::min(text.find_first_of(",*", at + 1), text.size());
            fields_[++count_] = text.substr(at + 1, end - at - 1);
        }
    }

    void SetField(std::int32_t number, const std::string& value) {
        fields_[number] = value;
        count_ = std::max(count_, number);
        isDirty_ = true;
    }

    // False for a length that is not allowed.
    bool SetCommand(const std::string& command) {
        if (command.size() != 3 && command.size() != 5) return false;
        fullCommand_ = command.size() == 3 ? "GP" + command : command;
        isDirty_ = true;
        return true;
    }

    // False for an index out of bounds, which yields an empty text.
    bool Field(std::int32_t index, std::string& text) const {
        const std::int32_t number = static_cast<signed char>(index);
        text.clear();
        if (number < 1 || number > count_) return false;
        const auto found = fields_.find(number);
        if (found != fields_.end()) text = found->second;
        return true;
    }

    const std::string& Text() {
        if (isDirty_) Rebuild();
        return text_;
    }

    std::int32_t FieldCount() const { return count_; }
    const std::string& FullCommand() const { return fullCommand_; }

  private:
    void Rebuild() {
        text_ = "$" + fullCommand_;
        for (std::int32_t number = 1; number <= count_ && text_.size() < 255; ++number) {
            text_ += ',';
            const auto found = fields_.find(number);
            if (found != fields_.end()) text_ += found->second;
        }
        text_ = text_.substr(0, 255);
        if (text_.size() + 2 < 255) text_ = Sentence(std::string_view(text_).substr(1));
        isDirty_ = false;
    }

    std::string text_;
    std::string fullCommand_;
    std::map<std::int32_t, std::string> fields_;
    std::int32_t count_ = 0;
    bool isDirty_ = false;
};

}  // namespace kavrel
