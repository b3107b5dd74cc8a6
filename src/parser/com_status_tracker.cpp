#include "parser/com_status_tracker.h"

#include <utility>

namespace kavrel {

bool ComStatusTracker::NoteFix(bool isValid, std::uint32_t tickMs) {
    if (isValid) lastValidFixTickMs_ = tickMs;
    return std::exchange(values_.hasValidFix, isValid) != isValid;
}

bool ComStatusTracker::ExpireFix(std::uint32_t tickMs) {
    if (!lastValidFixTickMs_.has_value()) return false;
    // It holds when the tick count wraps, and for a fix that another thread has noted since the
    // caller looked at the clock.
    const auto ageMs = static_cast<std::int32_t>(tickMs - *lastValidFixTickMs_);
    if (ageMs < kFixLifetimeMs) return false;
    lastValidFixTickMs_.reset();
    values_.hasValidFix = false;
    return true;
}

void ComStatusTracker::NotePort(std::int32_t comPort, std::int32_t baudRate) {
    values_.comPort = static_cast<std::int16_t>(comPort);
    values_.baudRate = static_cast<std::uint32_t>(baudRate);
    values_.isFromSource = true;
}

void ComStatusTracker::ForgetSource() {
    values_.hasValidNmea = false;
    values_.hasValidFix = false;
    lastValidFixTickMs_.reset();
}

}  // namespace kavrel
