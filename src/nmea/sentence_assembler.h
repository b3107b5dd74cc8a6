// SentenceAssembler: cuts a stream of characters into NMEA 0183 sentences and checks their
// checksums.
//
// A sentence runs from its "$" to the CR LF behind it. One whose checksum does not fit is dropped
// without a word, and one that another "$" interrupts gives way to the newer one.
//
// Thread safety: none but for SetChecksumMandatory, which any thread may call; one assembler serves
// one source of text.
// Invariant: of the characters that wait unexamined, the last 512 are kept. When there are more,
// the oldest are lost and reading goes on with the oldest that is still there, so nothing is
// delivered twice or out of order.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/record.h"
#include "base/spare.h"
#include "nmea/nmea_sentence.h"

namespace kavrel {

class SentenceAssembler {
  public:
    static constexpr std::size_t kRingSize = 512;

    // Adds characters. True when one of them was a line feed, that is, when it is worth
    // asking HasSentence.
    bool Append(std::string_view text);

    // Drops what waits, so that another stream of characters may begin.
    void Clear() { read_ = end_; }

    // Looks for the next complete sentence with a valid checksum. What it passes over is gone; an
    // unfinished sentence stays for later.
    bool HasSentence();

    // The sentence that HasSentence found, without its CR LF.
    // REQUIRES: the last HasSentence returned true, and nothing was appended since.
    Ref<NmeaSentence> TakeSentence();

    // Takes a sentence back that was taken, or null. One that nobody else has kept is used again.
    void GiveBack(Ref<NmeaSentence> sentence) { spare_.GiveBack(std::move(sentence)); }

    // With true, a sentence without a checksum is dropped, too. Default: false.
    void SetChecksumMandatory(bool isMandatory) { isChecksumMandatory_ = isMandatory; }

  private:
    bool FindSentence();
    bool FindOrdinarySentence();
    bool IsChecksumValid();

    const char* Find(char c, const char* from, const char* to) const;
    const char* end() const { return buffer_.data() + end_; }

    // What waits moves to the front when the end is reached, so that it always lies in one piece.
    static constexpr std::size_t kBufferSize = 2 * kRingSize;
    static constexpr std::size_t kReadAhead = sizeof(std::uint64_t);  // may be read behind the end
    std::array<char, kBufferSize + kReadAhead> buffer_{};
    std::size_t read_ = 0;       // the first character not examined
    std::size_t end_ = 0;        // behind the last one
    std::string_view sentence_;  // in the buffer, without its CR LF
    std::size_t star_ = 0;       // where the sentence's first "*" is; npos when there is none
    Spare<NmeaSentence> spare_;
    std::atomic<bool> isChecksumMandatory_{false};  // set by the client's thread
};

}  // namespace kavrel
