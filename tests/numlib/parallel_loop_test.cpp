#include "numlib/parallel_loop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

namespace vexa {
namespace {

TEST(ParallelLoop, EveryTurnComesOnceAndWorkersNeverMeet) {
  for (const int threads : {1, 2, 3, mostLoopThreads, mostLoopThreads + 1}) {
    for (const int count : {0, 1, 2, 1000}) {
      std::vector<std::atomic<int>> turns(static_cast<std::size_t>(count));
      std::vector<std::atomic<bool>> busy(mostLoopThreads);
      std::atomic<int> faults = 0;
      parallelLoop(count, threads, [&](int index, int worker) {
        if (worker < 0 || worker >= std::min(threads, mostLoopThreads)) {
          ++faults;
          return;
        }
        if (busy[static_cast<std::size_t>(worker)].exchange(true)) ++faults;
        ++turns[static_cast<std::size_t>(index)];
        busy[static_cast<std::size_t>(worker)] = false;
      });
      EXPECT_EQ(faults, 0) << threads << " threads";
      for (const auto& turn : turns) ASSERT_EQ(turn, 1) << threads << " threads, " << count;
    }
  }
}

}  // namespace
}  // namespace vexa
