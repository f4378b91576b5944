// Loops over several numbers at a time, written once for all processors.
//
// A Pack is four neighbouring doubles in memory of any alignment. The compiler turns an operation
// on packs into whatever the machine has; each lane is rounded as the same operation on single
// numbers would be, so the width of the machine never shows in a result.
#pragma once

#include <cstddef>

namespace vexa {

using Pack = double __attribute__((vector_size(32)));

// A pack where it lies. The record around it carries the alignment, which clang 14 loses on the way
// from an aligned type to a reference.
struct [[gnu::packed, gnu::may_alias]] StoredPack {
  Pack lanes;
};
static_assert(alignof(StoredPack) == 1 && sizeof(StoredPack) == sizeof(Pack));

inline constexpr std::ptrdiff_t packSize = 4;

}  // namespace vexa

// Marks a function whose loops are compiled a second time for newer processors; the choice is made
// when the program is loaded. clang 14 cannot link such functions across files.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define VEXA_WIDE_LOOPS __attribute__((target_clones("avx2", "default")))
#else
#define VEXA_WIDE_LOOPS
#endif
