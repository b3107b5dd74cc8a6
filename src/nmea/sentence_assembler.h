// SentenceAssembler: cuts a stream of characters into NMEA 0183 sentences and checks their
// checksums.
//
// A sentence runs from its "$" to the CR LF behind it. One whose checksum does not fit is dropped
// without a word, and one that another "$" interrupts gives way to the newer one.
//
// Thread safety: none but for SetChecksumMandatory, which any thread may call; one assembler serves
// one source of text.
// Invariant: the ring holds the last 512 characters appended. When more than that wait unexamined,
// the oldest are lost and reading goes on with the oldest that is still there, so nothing is
// delivered twice or out of order.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/record.h"
#include "nmea/nmea_sentence.h"

namespace kavrel {

class SentenceAssembler {
  public:
    static constexpr std::size_t kRingSize = 512;

    // Adds characters to the ring. True when one of them was a line feed, that is, when it is worth
    // asking HasSentence.
    bool Append(std::string_view text);

    // Drops what waits, so that another stream of characters may begin.
    void Clear() { read_ = write_; }

    // Looks for the next complete sentence with a valid checksum. What it passes over is gone; an
    // unfinished sentence stays for later.
    bool HasSentence();

    // The sentence that HasSentence found, without its CR LF.
    // REQUIRES: the last HasSentence returned true, and nothing was appended since.
    Ref<NmeaSentence> TakeSentence();

    // With true, a sentence without a checksum is dropped, too. Default: false.
    void SetChecksumMandatory(bool isMandatory) { isChecksumMandatory_ = isMandatory; }

  private:
    // Positions grow without bound and wrap at 2^16, a multiple of the ring's size.
    using Position = std::uint16_t;
    static_assert(65536 % kRingSize == 0);

    char At(Position position) const { return ring_[position % kRingSize]; }
    void CopyIn(std::string_view text);

    // The characters from `from` up to `to`, as far as they lie in one piece, that is, up to the
    // ring's end.
    std::string_view PieceAt(Position from, Position to) const;

    // The first position from `from` on that holds `c`; `to` when there is none.
    Position Find(char c, Position from, Position to) const;

    bool FindSentence();
    bool IsChecksumValid() const;

    std::array<char, kRingSize> ring_;
    Position write_ = 0;
    Position read_ = 0;
    Position sentenceStart_ = 0;
    Position sentenceEnd_ = 0;
    std::atomic<bool> isChecksumMandatory_{false};  // set by the client's thread
};

}  // namespace kavrel
