// How long routines learn that the user wants to stop, and how they end.
#pragma once

#include <functional>

namespace vexa {

// Asked now and then by long routines; true means that the user wants to stop. It may throw: the
// routines hold nothing that unwinding would lose. An empty one is never asked.
using InterruptTest = std::function<bool()>;

enum class Outcome {
  done,
  singular,     // no usable pivot
  interrupted,  // the interrupt test said so; the result is unfinished
};

inline bool asksToStop(const InterruptTest& interrupted) { return interrupted && interrupted(); }

}  // namespace vexa
