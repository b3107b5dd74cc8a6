#include "nmea/sentence_assembler.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "nmea/checksum.h"

namespace kavrel {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kNone = std::string_view::npos;

// Neither a "$" nor part of a line end, which mean something behind a "*", too.
bool IsOrdinaryDigit(char c) {
    return c >= '0' && c <= 'F';
}

}  // namespace

bool SentenceAssembler::Append(std::string_view text) {
    const bool hasLineFeed = text.find('\n') != std::string_view::npos;
    text = text.substr(text.size() - std::min(text.size(), kRingSize));

    const std::size_t kept = std::min(end_ - read_, kRingSize - text.size());
    if (end_ + text.size() > kBufferSize) {
        std::memmove(buffer_.data(), end() - kept, kept);
        end_ = kept;
    }
    read_ = end_ - kept;
    std::copy(text.begin(), text.end(), buffer_.begin() + end_);
    end_ += text.size();
    return hasLineFeed;
}

bool SentenceAssembler::HasSentence() {
    if (FindOrdinarySentence()) return true;
    while (FindSentence()) {
        if (IsChecksumValid()) return true;
    }
    return false;
}

// Takes the sentence that waits in front when it is one as receivers send them: a "$", characters
// from "," on, "*", a fitting checksum, CR LF. One walk, eight characters at a time, finds its end
// and sums it up. Of anything else nothing is taken.
bool SentenceAssembler::FindOrdinarySentence() {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    constexpr std::uint64_t kHighBits = 0x80 * kOnes;
    static_assert(std::endian::native == std::endian::little);
    const char* const start = buffer_.data() + read_;
    if (read_ == end_ || *start != '$') return false;

    const char* at = start + 1;
    std::uint64_t sum = 0;
    std::uint64_t eight;
    for (;; at += sizeof eight) {
        if (at >= end()) return false;
        std::memcpy(&eight, at, sizeof eight);
        // The high bit of the first byte below ",", and of none before it.
        const std::uint64_t below = (eight - ',' * kOnes) & ~eight & kHighBits;
        if (below != 0) {
            const int bits = std::countr_zero(below) - 7;
            at += bits / 8;
            sum ^= eight & ((std::uint64_t{1} << bits) - 1);
            break;
        }
        sum ^= eight;
    }
    constexpr std::ptrdiff_t kChecksumLength = 3;
    constexpr std::ptrdiff_t kTailLength = kChecksumLength + kLineEnd.size();
    if (*at != '*' || end() - at < kTailLength) return false;
    const std::string_view tail(at, kTailLength);
    if (!tail.ends_with(kLineEnd) || !IsOrdinaryDigit(tail[1]) || !IsOrdinaryDigit(tail[2]) ||
        !Checksum(sum).Matches(tail[1], tail[2])) {
        return false;
    }

    star_ = static_cast<std::size_t>(at - start);
    sentence_ = {start, star_ + kChecksumLength};
    read_ += star_ + kTailLength;
    return true;
}

// Where `c` first is; `to` when it is not there.
const char* SentenceAssembler::Find(char c, const char* from, const char* to) const {
    const std::size_t at = std::string_view(from, static_cast<std::size_t>(to - from)).find(c);
    return at != kNone ? from + at : to;
}

// Finds the next run from "$" to CR LF, whatever its checksum, and goes on behind it. Without one,
// leaves the read position at the newest "$", so that later text completes the sentence.
bool SentenceAssembler::FindSentence() {
    const char* start = Find('$', buffer_.data() + read_, end());
    read_ = static_cast<std::size_t>(start - buffer_.data());
    if (start == end()) return false;

    const char* lineFeed = start;
    do {
        lineFeed = Find('\n', lineFeed + 1, end());
    } while (lineFeed != end() && lineFeed[-1] != '\r');

    for (const char* next = start; next != lineFeed; next = Find('$', next + 1, lineFeed))
        start = next;
    read_ = static_cast<std::size_t>(start - buffer_.data());
    if (lineFeed == end()) return false;
    sentence_ = {start, static_cast<std::size_t>(lineFeed - 1 - start)};
    read_ += sentence_.size() + kLineEnd.size();
    return true;
}

// The two characters behind a "*" are there in any case: they may be those of the line end.
bool SentenceAssembler::IsChecksumValid() {
    star_ = sentence_.find('*');
    const std::string_view summed = sentence_.substr(1, std::min(star_, sentence_.size()) - 1);
    if (star_ == kNone || summed.find('\r') != kNone) return !isChecksumMandatory_;

    Checksum checksum;
    checksum.Add(summed);
    const char* const digits = sentence_.data() + star_ + 1;
    return checksum.Matches(digits[0], digits[1]);
}

Ref<NmeaSentence> SentenceAssembler::TakeSentence() {
    return spare_.Make(sentence_, star_);
}

}  // namespace kavrel
