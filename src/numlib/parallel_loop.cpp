#include "numlib/parallel_loop.h"

#include <sched.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <system_error>
#include <thread>

namespace vexa {

namespace {

// A list of numbers, of which the first counts; whatever else there is bounds nothing.
int threadsAllowed() {
  const char* const setting = std::getenv("OMP_NUM_THREADS");
  const long number = setting ? std::strtol(setting, nullptr, 10) : 0;
  return number > 0 && number < mostLoopThreads ? static_cast<int>(number) : mostLoopThreads;
}

}  // namespace

int loopThreads() {
  static const int threads = [] {
    cpu_set_t ours;
    CPU_ZERO(&ours);
    if (sched_getaffinity(0, sizeof ours, &ours) != 0) return 1;
    return std::clamp(CPU_COUNT(&ours), 1, threadsAllowed());
  }();
  return threads;
}

void parallelLoop(int count, int threads, const std::function<void(int, int)>& turn) {
  std::atomic<int> next = 0;
  const auto work = [&](int worker) {
    for (int i = next++; i < count; i = next++) turn(i, worker);
  };
  // Ends, and so waits, before `next` does.
  std::array<std::jthread, mostLoopThreads> others;
  const int most = std::min({threads, count, mostLoopThreads});
  for (int worker = 1; worker < most; ++worker) {
    try {
      others[static_cast<std::size_t>(worker)] = std::jthread(work, worker);
    } catch (const std::system_error&) {
      break;
    }
  }
  work(0);
}

}  // namespace vexa
