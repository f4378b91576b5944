#include "cli/interrupt.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <ctime>

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

void waitUnlessInterrupted(int descriptor, double seconds) {
  constexpr double longest = 1e6;
  const double bounded = std::min(seconds, longest);
  const double whole = std::floor(bounded);
  const timespec time{static_cast<time_t>(whole), static_cast<long>((bounded - whole) * 1e9)};
  // Blocked until the wait begins, so that no press slips in between the test and the wait.
  sigset_t interrupt, before;
  sigemptyset(&interrupt);
  sigaddset(&interrupt, SIGINT);
  sigprocmask(SIG_BLOCK, &interrupt, &before);
  if (pending == 0) {
    pollfd input{descriptor, POLLIN, 0};
    ppoll(&input, descriptor < 0 ? 0 : 1, seconds < 0 ? nullptr : &time, &before);
  }
  sigprocmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace vexa
