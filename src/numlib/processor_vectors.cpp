#include "numlib/processor_vectors.h"

namespace vexa {

int widestVectors() {
#if defined(__x86_64__)
  static const int widest = [] {
    if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma")) return 0;
    return __builtin_cpu_supports("avx512f") ? 2 : 1;
  }();
  return widest;
#else
  return 0;
#endif
}

}  // namespace vexa
