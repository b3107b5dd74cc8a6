#include "parser/com_status_tracker.h"

#include <utility>

namespace kavrel {

bool ComStatusTracker::NoteFix(bool isValid, std::uint32_t tickMs) {
    if (isValid) lastValidFixTickMs_ = tickMs;
    return std::exchange(values_.hasValidFix, isValid) != isValid;
}

bool ComStatusTracker::ExpireFix(std::uint32_t tickMs) {
    if (!lastValidFixTickMs_.has_value()) return false;
    // Unsigned, so that it holds when the tick count wraps.
    if (tickMs - *lastValidFixTickMs_ < kFixLifetimeMs) return false;
    lastValidFixTickMs_.reset();
    values_.hasValidFix = false;
    return true;
}

}  // namespace kavrel
