// What fuzzers do when the code under test is wrong.
#pragma once

namespace kavrel {

// Ends the program unless the condition holds, so that the fuzzer reports and keeps the input.
inline void Check(bool condition) {
    if (!condition) __builtin_trap();
}

}  // namespace kavrel
