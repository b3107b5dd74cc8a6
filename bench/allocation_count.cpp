#include "allocation_count.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local std::int64_t allocations = 0;

}  // namespace

std::int64_t AllocationsOfThisThread() {
    return allocations;
}

// Only these of the replaceable functions are used by code without exceptions; the others call
// them.
void* operator new(std::size_t size) {
    ++allocations;
    void* const memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) std::abort();
    return memory;
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
