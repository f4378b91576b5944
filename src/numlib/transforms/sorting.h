#pragma once

// Sorting in place, ascending.

#include <span>

namespace vexa {

// Sorts the values; not-a-number goes to the end. No storage beside the values is used.
void sortAscending(std::span<double> values);

// Sorts the keys and moves the element of `companions` at the same place with each key. Both have
// the same length and do not overlap.
void sortAscending(std::span<double> keys, std::span<double> companions);

// The same by heap sort, which the others leave those parts to that resist them. No key may be
// not-a-number.
void heapSortAscending(std::span<double> keys, std::span<double> companions);

}  // namespace vexa
