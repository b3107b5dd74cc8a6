#include "nmea/sentence_assembler.h"

#include <algorithm>

#include "nmea/checksum.h"

namespace kavrel {

bool SentenceAssembler::Append(std::string_view text) {
    const bool hasLineFeed = text.find('\n') != std::string_view::npos;
    const std::size_t unexamined = static_cast<Position>(write_ - read_) + text.size();

    // Only the last characters would survive, so only they are copied.
    write_ = static_cast<Position>(write_ + text.size());
    CopyIn(text.substr(text.size() - std::min(text.size(), kRingSize)));
    if (unexamined > kRingSize) read_ = static_cast<Position>(write_ - kRingSize);
    return hasLineFeed;
}

// Copies a text of at most the ring's size so that it ends at the write position.
void SentenceAssembler::CopyIn(std::string_view text) {
    const std::size_t start = static_cast<Position>(write_ - text.size()) % kRingSize;
    const std::size_t untilEnd = std::min(text.size(), kRingSize - start);
    std::copy_n(text.begin(), untilEnd, ring_.begin() + start);
    std::copy(text.begin() + untilEnd, text.end(), ring_.begin());
}

bool SentenceAssembler::HasSentence() {
    while (FindSentence()) {
        read_ = sentenceEnd_;
        if (IsChecksumValid()) return true;
    }
    return false;
}

std::string_view SentenceAssembler::PieceAt(Position from, Position to) const {
    const std::size_t start = from % kRingSize;
    const std::size_t length = static_cast<Position>(to - from);
    return {ring_.data() + start, std::min(length, kRingSize - start)};
}

SentenceAssembler::Position SentenceAssembler::Find(char c, Position from, Position to) const {
    while (from != to) {
        const std::string_view piece = PieceAt(from, to);
        const std::size_t at = piece.find(c);
        if (at != std::string_view::npos) return static_cast<Position>(from + at);
        from = static_cast<Position>(from + piece.size());
    }
    return to;
}

// Finds the next run from "$" to CR LF, whatever its checksum. Without one, leaves the read
// position at the newest "$", so that later text completes the sentence.
bool SentenceAssembler::FindSentence() {
    read_ = Find('$', read_, write_);
    if (read_ == write_) return false;

    Position end = read_;  // of the sentence, before its line feed
    do {
        end = Find('\n', static_cast<Position>(end + 1), write_);
    } while (end != write_ && At(static_cast<Position>(end - 1)) != '\r');

    for (Position next = read_; next != end;
         next = Find('$', static_cast<Position>(next + 1), end)) {
        read_ = next;
    }
    if (end == write_) return false;
    sentenceStart_ = read_;
    sentenceEnd_ = static_cast<Position>(end + 1);
    return true;
}

bool SentenceAssembler::IsChecksumValid() const {
    Position at = static_cast<Position>(sentenceStart_ + 1);
    const Position star = Find('*', at, sentenceEnd_);
    if (Find('\r', at, star) != star) return !isChecksumMandatory_;

    Checksum checksum;
    while (at != star) {
        const std::string_view piece = PieceAt(at, star);
        checksum.Add(piece);
        at = static_cast<Position>(at + piece.size());
    }
    return checksum.Matches(At(static_cast<Position>(star + 1)),
                            At(static_cast<Position>(star + 2)));
}

Ref<NmeaSentence> SentenceAssembler::TakeSentence() {
    constexpr std::size_t kLineEndLength = 2;
    const std::size_t length =
        static_cast<Position>(sentenceEnd_ - sentenceStart_) - kLineEndLength;
    const std::size_t start = sentenceStart_ % kRingSize;
    const std::size_t untilEnd = std::min(length, kRingSize - start);

    const std::string_view ring(ring_.data(), kRingSize);
    auto sentence = MakeRef<NmeaSentence>();
    sentence->SetText(ring.substr(start, untilEnd), ring.substr(0, length - untilEnd));
    return sentence;
}

}  // namespace kavrel
