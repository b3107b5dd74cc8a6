#include "platform/window_class_name.h"

#include <cstddef>

namespace kavrel {
namespace {

// Moves the days of the file time away from those of genuine identifiers.
constexpr std::uint32_t kTimeOffset = 1338356;

// The version digit of identifiers made from the time.
constexpr std::uint32_t kTimeVersion = 0x1000;

}  // namespace

WindowClassName MakeWindowClassName(const WindowClassSeed& seed) {
    const auto lowTime = static_cast<std::uint32_t>(seed.systemTime);
    const std::uint32_t highTime = static_cast<std::uint32_t>(seed.systemTime >> 32) + kTimeOffset;

    WindowClassName name{};
    std::size_t at = 0;
    const auto writeHex = [&](std::uint32_t value, unsigned digits) {
        for (unsigned i = digits; i-- > 0;)
            name[at++] = u"0123456789abcdef"[(value >> (4 * i)) & 15];
    };
    const auto writeGroup = [&](std::uint32_t value) {
        name[at++] = u'-';
        writeHex(value, 4);
    };
    writeHex(lowTime, 8);
    writeGroup(highTime);
    writeGroup((highTime >> 16) | kTimeVersion);
    writeGroup(seed.firstRandom);
    writeGroup(seed.tickCountMs >> 16);
    writeHex(seed.tickCountMs, 4);
    writeHex(seed.secondRandom, 4);
    return name;
}

}  // namespace kavrel
