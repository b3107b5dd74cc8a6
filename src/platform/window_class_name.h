// The name of the hidden window's class: a fresh identifier in the form of a GUID's text, so that
// no two copies of the library in a process share a class.
#pragma once

#include <array>
#include <cstdint>

namespace kavrel {

// What makes a name fresh.
struct WindowClassSeed {
    std::uint64_t systemTime = 0;  // 100 ns since 1601, as the platform's file times count
    std::uint32_t tickCountMs = 0;
    std::uint32_t firstRandom = 0;
    std::uint32_t secondRandom = 0;
};

// 8-4-4-4-12 lower-case hexadecimal digits and a zero.
using WindowClassName = std::array<char16_t, 37>;

WindowClassName MakeWindowClassName(const WindowClassSeed& seed);

}  // namespace kavrel
