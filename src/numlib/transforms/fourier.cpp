#include "numlib/transforms/fourier.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <memory>

namespace vexa {

namespace {

// Danielson and Lanczos' butterflies after a reordering by reversed bits. Every butterfly is
// computed on its own as described, whatever the order in which they are done; two stages are done
// in one pass over memory, and all stages of a part that fits the cache before the next part.

struct Complex {
  double re, im;
};

constexpr double twoPi = 6.28318530717959;
constexpr std::size_t cachedPoints = 1024;  // 16 kB, beside their factors
constexpr std::size_t pointsBetweenQuestions = std::size_t{1} << 18;

// The factors of the stage with blocks of 2 h points stand from h to 2 h - 1: powers of
// exp(2 pi i s / (2 h)), each made from the one before by the trigonometric recurrence.
class TwiddleTable {
 public:
  explicit TwiddleTable(std::size_t points)
      : m_points(points), m_factors(std::make_unique_for_overwrite<Complex[]>(points)) {}
  // False when the user wants to stop.
  bool fill(double sign, const InterruptTest& interrupted) {
    for (std::size_t h = 1; h < m_points; h *= 2) {
      if (!fillStage(h, sign, interrupted)) return false;
    }
    return true;
  }
  const Complex* stage(std::size_t h) const { return m_factors.get() + h; }

 private:
  bool fillStage(std::size_t h, double sign, const InterruptTest& interrupted) {
    const double angle = twoPi / (static_cast<double>(2 * h) * sign);
    const double halfSine = std::sin(0.5 * angle);
    const Complex step{-2.0 * halfSine * halfSine, std::sin(angle)};
    Complex w{1.0, 0.0};
    for (std::size_t i = h; i < 2 * h;) {
      if (i % pointsBetweenQuestions == 0 && asksToStop(interrupted)) return false;
      for (const std::size_t end = std::min(2 * h, i + pointsBetweenQuestions); i < end; ++i) {
        m_factors[i] = w;
        w = {w.re * step.re - w.im * step.im + w.re, w.im * step.re + w.re * step.im + w.im};
      }
    }
    return true;
  }

  std::size_t m_points;
  std::unique_ptr<Complex[]> m_factors;
};

// ---- Reordering ----

std::size_t reverseBits(std::size_t i, int bits) {
  std::size_t reversed = 0;
  for (int k = 0; k < bits; ++k) reversed = (reversed << 1) | ((i >> k) & 1);
  return reversed;
}

// Point i changes places with point j, whose number has the bits of i in reverse.
void reorderShort(Complex* v, int bits) {
  for (std::size_t i = 0; i < std::size_t{1} << bits; ++i) {
    const std::size_t j = reverseBits(i, bits);
    if (i < j) std::swap(v[i], v[j]);
  }
}

constexpr int edgeBits = 4;
constexpr std::size_t edge = std::size_t{1} << edgeBits;
using Tile = std::array<Complex, edge * edge>;

constexpr std::array<std::size_t, edge> reversedEdge = [] {
  std::array<std::size_t, edge> table{};
  for (std::size_t i = 0; i < edge; ++i)
    for (int k = 0; k < edgeBits; ++k) table[i] |= ((i >> k) & 1) << (edgeBits - 1 - k);
  return table;
}();

// The numbers of points are cut into upper, middle and lower bits. All points of one middle part
// are a tile, which changes places with the tile of the reversed middle part as a whole, turned
// over: so that each line of the cache is fetched once.
void loadTile(const Complex* v, std::size_t middle, int bits, Tile& tile) {
  for (std::size_t upper = 0; upper < edge; ++upper) {
    const Complex* from = v + (upper << (bits - edgeBits)) + (middle << edgeBits);
    for (std::size_t lower = 0; lower < edge; ++lower)
      tile[reversedEdge[lower] * edge + reversedEdge[upper]] = from[lower];
  }
}

void storeTile(Complex* v, std::size_t middle, int bits, const Tile& tile) {
  for (std::size_t upper = 0; upper < edge; ++upper)
    std::copy_n(tile.begin() + static_cast<std::ptrdiff_t>(upper * edge), edge,
                v + (upper << (bits - edgeBits)) + (middle << edgeBits));
}

bool reorder(Complex* v, int bits, const InterruptTest& interrupted) {
  const int middleBits = bits - 2 * edgeBits;
  if (middleBits < 0) {
    reorderShort(v, bits);
    return true;
  }
  constexpr std::size_t tilesBetweenQuestions = pointsBetweenQuestions / (edge * edge);
  Tile one, other;
  for (std::size_t i = 0; i < std::size_t{1} << middleBits; ++i) {
    if (i % tilesBetweenQuestions == tilesBetweenQuestions - 1 && asksToStop(interrupted)) {
      return false;
    }
    const std::size_t j = reverseBits(i, middleBits);
    if (i > j) continue;
    loadTile(v, i, bits, one);
    if (i != j) {
      loadTile(v, j, bits, other);
      storeTile(v, i, bits, other);
    }
    storeTile(v, j, bits, one);
  }
  return true;
}

// ---- Butterflies ----

// Two complex numbers; split in halves by the compiler where registers hold one.
using Pair = double __attribute__((vector_size(32)));

[[gnu::always_inline]] inline void load(Pair& x, const Complex* from) {
  std::memcpy(&x, from, sizeof x);
}

[[gnu::always_inline]] inline void store(Complex* to, const Pair& x) {
  std::memcpy(to, &x, sizeof x);
}

// t = w b for each of the two: re = w.re b.re - w.im b.im, im = w.re b.im + w.im b.re.
[[gnu::always_inline]] inline void butterfly(const Complex* factors, Pair& a, Pair& b) {
  Pair w;
  load(w, factors);
  const Pair plain = __builtin_shufflevector(w, w, 0, 0, 2, 2) * b;
  const Pair crossed =
      __builtin_shufflevector(w, w, 1, 1, 3, 3) * __builtin_shufflevector(b, b, 1, 0, 3, 2);
  const Pair t = __builtin_shufflevector(plain - crossed, plain + crossed, 0, 5, 2, 7);
  b = a - t;
  a = a + t;
}

void butterfly(const Complex& w, Complex& a, Complex& b) {
  const Complex t{w.re * b.re - w.im * b.im, w.re * b.im + w.im * b.re};
  b = {a.re - t.re, a.im - t.im};
  a = {a.re + t.re, a.im + t.im};
}

// The first stage alone: blocks of two points.
void firstStage(Complex* v, std::size_t n, const TwiddleTable& table) {
  const Complex w = *table.stage(1);
  for (std::size_t i = 0; i < n; i += 2) butterfly(w, v[i], v[i + 1]);
}

// The first two stages: blocks of two, then of four points.
void firstTwoStages(Complex* v, std::size_t n, const TwiddleTable& table) {
  const Complex w = *table.stage(1);
  const Complex* w2 = table.stage(2);
  for (std::size_t i = 0; i < n; i += 4) {
    butterfly(w, v[i], v[i + 1]);
    butterfly(w, v[i + 2], v[i + 3]);
    butterfly(w2[0], v[i], v[i + 2]);
    butterfly(w2[1], v[i + 1], v[i + 3]);
  }
}

// Which butterflies of a block: those of its points from `from` to before `to`, both even.
struct Stretch {
  std::size_t from, to;
};

// The stages with blocks of 2 h and of 4 h points, h being even.
[[gnu::always_inline]] inline void doubleStage(Complex* v, std::size_t n, std::size_t h,
                                               Stretch stretch, const TwiddleTable& table) {
  const Complex* w1 = table.stage(h);
  const Complex* w2 = table.stage(2 * h);
  for (std::size_t block = 0; block < n; block += 4 * h) {
    Complex* p = v + block;
    for (std::size_t m = stretch.from; m < stretch.to; m += 2) {
      Pair a, b, c, d;
      load(a, p + m);
      load(b, p + m + h);
      load(c, p + m + 2 * h);
      load(d, p + m + 3 * h);
      butterfly(w1 + m, a, b);
      butterfly(w1 + m, c, d);
      butterfly(w2 + m, a, c);
      butterfly(w2 + m + h, b, d);
      store(p + m, a);
      store(p + m + h, b);
      store(p + m + 2 * h, c);
      store(p + m + 3 * h, d);
    }
  }
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] void doubleStageWide(Complex* v, std::size_t n, std::size_t h,
                                             Stretch stretch, const TwiddleTable& table) {
  doubleStage(v, n, h, stretch, table);
}
#endif

void runDoubleStage(Complex* v, std::size_t n, std::size_t h, Stretch stretch,
                    const TwiddleTable& table) {
#if defined(__x86_64__)
  if (__builtin_cpu_supports("avx2")) {
    doubleStageWide(v, n, h, stretch, table);
    return;
  }
#endif
  doubleStage(v, n, h, stretch, table);
}

// All stages of a part that fits the cache.
void runCachedStages(Complex* v, std::size_t n, const TwiddleTable& table) {
  std::size_t h;
  if (std::countr_zero(n) % 2 == 1) {
    firstStage(v, n, table);
    h = 2;
  } else {
    firstTwoStages(v, n, table);
    h = 4;
  }
  for (; h < n; h *= 4) runDoubleStage(v, n, h, {0, h}, table);
}

bool runStages(Complex* v, std::size_t n, const TwiddleTable& table,
               const InterruptTest& interrupted) {
  if (n <= 2 * cachedPoints) {
    runCachedStages(v, n, table);
    return true;
  }
  const std::size_t quarter = n / 4;
  for (std::size_t i = 0; i < 4; ++i) {
    if (!runStages(v + i * quarter, quarter, table, interrupted)) return false;
  }
  constexpr std::size_t step = pointsBetweenQuestions / 4;
  for (std::size_t from = 0; from < quarter; from += step) {
    if (quarter >= step && asksToStop(interrupted)) return false;
    runDoubleStage(v, n, quarter, {from, std::min(from + step, quarter)}, table);
  }
  return true;
}

}  // namespace

bool isTransformLength(std::size_t points) { return points >= 4 && std::has_single_bit(points); }

Outcome fourierTransform(std::span<double> parts, FourierDirection direction,
                         const InterruptTest& interrupted) {
  const std::size_t n = parts.size() / 2;
  if (n < 2) return Outcome::done;
  static_assert(sizeof(Complex) == 2 * sizeof(double));
  auto* v = reinterpret_cast<Complex*>(parts.data());
  const bool inverse = direction == FourierDirection::inverse;
  TwiddleTable table(n);
  if (!table.fill(inverse ? -1.0 : 1.0, interrupted) ||
      !reorder(v, std::countr_zero(n), interrupted) || !runStages(v, n, table, interrupted)) {
    return Outcome::interrupted;
  }
  // A power of two: the product is the quotient, bit for bit.
  const double scale = 1.0 / static_cast<double>(n);
  if (inverse) {
    for (double& x : parts) x *= scale;
  }
  return Outcome::done;
}

}  // namespace vexa
