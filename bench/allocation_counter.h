#pragma once

// Counts the allocations of a program, to show where there are none. The program gets its own
// operator new with it.

#include <cstddef>

namespace vexa {

// Calls of operator new since the program started.
std::size_t allocationCount();

}  // namespace vexa
