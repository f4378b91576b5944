#pragma once

// Sorting in place, ascending. Interrupted, the values are a permutation of what they were, with
// each companion still at its key.

#include <span>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

// Sorts the values; not-a-number goes to the end. No storage beside the values is used.
Outcome sortAscending(std::span<double> values, const InterruptTest& interrupted = {});

// Sorts the keys and moves the element of `companions` at the same place with each key. Both have
// the same length and do not overlap.
Outcome sortAscending(std::span<double> keys, std::span<double> companions,
                      const InterruptTest& interrupted = {});

// The same by heap sort, which the others leave those parts to that resist them. No key may be
// not-a-number.
Outcome heapSortAscending(std::span<double> keys, std::span<double> companions,
                          const InterruptTest& interrupted = {});

}  // namespace vexa
