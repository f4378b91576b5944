// What long iterations tell and ask of whoever called them.
#pragma once

#include <functional>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

// How an iteration that takes long is reported: `notice` is called once for each value that is not
// found after `patience` rounds, and the iteration goes on. An empty notice is never called.
struct SlowIteration {
  std::function<void()> notice = {};
  int patience = 30;
};

}  // namespace vexa
