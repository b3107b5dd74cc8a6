// For tests: lets a thread fail to start.
#pragma once

#include <cstdint>

namespace kavrel {

// The `nth` Thread::Start from now (1 is the next) fails with `error`. One at a time.
void FailThreadStart(int nth, std::uint32_t error);

}  // namespace kavrel
