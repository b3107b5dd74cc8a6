// TextView: a text of 16-bit characters, as hosts give them, beside its 8-bit form.
//
// The engine works on 8-bit text. A character that does not fit stands there as kSubstitute, which
// has no meaning in any sentence; the text as given goes along only when there is such a character.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kavrel {

struct TextView {
    static constexpr char kSubstitute = '\x1A';
    static constexpr char16_t kLargestNarrow = 0xFF;

    TextView() = default;
    TextView(std::string_view text) : narrow(text) {}    // NOLINT(google-explicit-constructor)
    TextView(const std::string& text) : narrow(text) {}  // NOLINT(google-explicit-constructor)
    TextView(const char* text) : narrow(text) {}         // NOLINT(google-explicit-constructor)
    TextView(std::string_view narrowText, std::u16string_view wideText)
        : narrow(narrowText), wide(wideText) {}

    TextView substr(std::size_t begin, std::size_t length = std::string_view::npos) const {
        return {narrow.substr(begin, length), wide.empty() ? wide : wide.substr(begin, length)};
    }

    std::string_view narrow;
    std::u16string_view wide;  // as long as `narrow`, or empty
};

// The 8-bit form of a text.
inline std::string Narrowed(std::u16string_view text) {
    std::string narrow(text.size(), TextView::kSubstitute);
    std::transform(text.begin(), text.end(), narrow.begin(), [](char16_t c) {
        return c <= TextView::kLargestNarrow ? static_cast<char>(c) : TextView::kSubstitute;
    });
    return narrow;
}

// Whether the 8-bit form of a text loses anything.
inline bool NeedsWide(std::u16string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](char16_t c) { return c > TextView::kLargestNarrow; });
}

// Adds a text in its 16-bit form.
inline void AppendWide(std::u16string& to, const TextView& text) {
    if (!text.wide.empty()) {
        to.append(text.wide);
        return;
    }
    for (const char c : text.narrow)
        to.push_back(static_cast<std::uint8_t>(c));
}

}  // namespace kavrel
