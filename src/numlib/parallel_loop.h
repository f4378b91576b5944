// A loop whose turns may run at the same time.
#pragma once

#include <functional>

namespace vexa {

// Threads that a loop may use: the processors that this process may run on, at most
// mostLoopThreads, and at most what the environment variable OMP_NUM_THREADS says, which other
// numerical libraries heed, too.
inline constexpr int mostLoopThreads = 8;
int loopThreads();

// Calls turn(index, worker) once for every index from 0 to count - 1, in any order and on up to
// `threads` threads, the caller's among them; worker, below `threads`, tells apart what runs at
// the same time. Returns when all turns are done. A turn must not throw; one that allocates makes
// each thread keep a heap of its own. Where threads cannot be had the loop runs on fewer.
void parallelLoop(int count, int threads, const std::function<void(int index, int worker)>& turn);

}  // namespace vexa
