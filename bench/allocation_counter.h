#pragma once

// Counts the allocations of the benchmark program, to show where there are none.

#include <cstddef>

namespace vexa {

// Calls of operator new since the program started.
std::size_t allocationCount();

}  // namespace vexa
