#include "cli/interrupt.h"

#include <unistd.h>

#include <csignal>

#include "cli/options.h"

namespace vexa {

namespace {

volatile std::sig_atomic_t pending = 0;

void noteInterrupt(int) {
  if (pending != 0) _exit(exitInterrupted);
  pending = 1;
}

}  // namespace

void catchInterrupts() {
  struct sigaction action {};
  action.sa_handler = noteInterrupt;  // no restart: a read that waits for an answer must end
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
}

bool interruptPending() { return pending != 0; }

bool takeInterrupt() {
  const bool was = pending != 0;
  pending = 0;
  return was;
}

}  // namespace vexa
