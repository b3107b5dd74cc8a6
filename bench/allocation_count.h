// Counts allocations of the program it is linked into.
#pragma once

#include <cstdint>

std::int64_t AllocationsOfThisThread();
