// ComStatusTracker: the com status as it is now, and how long its valid fix still counts.
//
// Thread safety: none; the parser guards it by the library lock.
#pragma once

#include <cstdint>
#include <optional>

#include "results/com_status.h"

namespace kavrel {

class ComStatusTracker {
  public:
    // A fix without another one behind it counts for so long.
    static constexpr std::int32_t kFixLifetimeMs = 5000;

    const ComStatusValues& values() const { return values_; }

    // A fix was made at that tick. True when this changed the status.
    bool NoteFix(bool isValid, std::uint32_t tickMs);

    // To be called now and then while data arrive: a valid fix that is too old counts no longer.
    // True, once for each such fix, when the client is to be told.
    bool ExpireFix(std::uint32_t tickMs);

    // The source reads from that port at that rate.
    void NotePort(std::int32_t comPort, std::int32_t baudRate);

    // The source has delivered a sentence.
    void NoteNmea() { values_.hasValidNmea = true; }

    // A source begins, from which nothing has come.
    void ForgetNmea() { values_.hasValidNmea = false; }

    // The source has failed or ended.
    void ForgetSource();

  private:
    ComStatusValues values_;
    std::optional<std::uint32_t> lastValidFixTickMs_;
};

}  // namespace kavrel
