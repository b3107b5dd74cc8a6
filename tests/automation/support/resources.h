// Resources: what this process holds of the system, counted exactly, for finding leaks.
#pragma once

#include <cstddef>
#include <iosfwd>

namespace kavrel::tests {

struct Resources {
    size_t handles = 0;  // of all kinds
    size_t threads = 0;
    size_t heapBlocks = 0;  // in all heaps: of the DLL, of this program and of the system
    size_t heapBytes = 0;

    bool operator==(const Resources&) const = default;

    // Counts. Do it once before the first count that matters: first uses of anything stay.
    static Resources Now();
};

void PrintTo(const Resources& resources, std::ostream* out);

}  // namespace kavrel::tests
