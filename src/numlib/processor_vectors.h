// Loops that are compiled once for each width of the processor's vectors.
#pragma once

#include <array>
#include <cstddef>

namespace vexa {

// What this processor runs: 0 for what all of the family have, 1 for four doubles at a time with
// fused sums (AVX2 and FMA), 2 for eight (AVX-512).
int widestVectors();

// The same loops for widths 0, 1 and 2, as many as were compiled.
template <class Loops, std::size_t count>
using LoopsByWidth = std::array<const Loops*, count>;

// Null beyond what this processor runs.
template <class Loops, std::size_t count>
const Loops* loopsOfWidth(const LoopsByWidth<Loops, count>& all, int width) {
  const bool there = width >= 0 && width <= widestVectors();
  return there && static_cast<std::size_t>(width) < count ? all[static_cast<std::size_t>(width)]
                                                          : nullptr;
}

template <class Loops, std::size_t count>
const Loops& widestLoops(const LoopsByWidth<Loops, count>& all) {
  for (int width = widestVectors(); width > 0; --width) {
    if (const Loops* const loops = loopsOfWidth(all, width)) return *loops;
  }
  return *all[0];
}

}  // namespace vexa
