#include "numlib/transforms/sorting.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace vexa {

namespace {

// Quicksort whose partition has no branch that depends on a key (half of those would be predicted
// wrongly), sorting networks for the shortest parts, and heap sort for a part that resists: so any
// order of keys takes at most n log n steps.

constexpr std::size_t networkSize = 16;
constexpr std::size_t insertionSize = 24;
constexpr std::size_t manyKeys = 256;  // from here on the pivot is looked for among nine keys
constexpr std::size_t keysBetweenQuestions = std::size_t{1} << 18;

// Whoever asks has put down what it had in hand: the question may throw, and then the keys are a
// permutation of what they were. Once it has said yes, all that runs comes to its end.
class StopQuestion {
 public:
  explicit StopQuestion(const InterruptTest& interrupted) : m_interrupted(interrupted) {}
  bool ask() { return m_stopped = m_stopped || asksToStop(m_interrupted); }
  bool stopped() const { return m_stopped; }

 private:
  const InterruptTest& m_interrupted;
  bool m_stopped = false;
};

// What is sorted: keys alone, or keys that each take a companion along. An Item is a key in hand.
struct PlainKeys {
  using Item = double;
  double* keys;

  Item take(std::size_t i) const { return keys[i]; }
  void put(std::size_t i, Item item) const { keys[i] = item; }
  void copy(std::size_t to, std::size_t from) const { keys[to] = keys[from]; }
  static double keyOf(Item item) { return item; }
  PlainKeys from(std::size_t i) const { return {keys + i}; }
};

struct PairedKeys {
  struct Item {
    double key, companion;
  };
  double* keys;
  double* companions;

  Item take(std::size_t i) const { return {keys[i], companions[i]}; }
  void put(std::size_t i, Item item) const {
    keys[i] = item.key;
    companions[i] = item.companion;
  }
  void copy(std::size_t to, std::size_t from) const {
    keys[to] = keys[from];
    companions[to] = companions[from];
  }
  static double keyOf(Item item) { return item.key; }
  PairedKeys from(std::size_t i) const { return {keys + i, companions + i}; }
};

template <class Keys>
void exchange(Keys v, std::size_t i, std::size_t j) {
  const auto item = v.take(i);
  v.copy(i, j);
  v.put(j, item);
}

// Moves the keys that are not-a-number to the end and returns how many others there are. After it
// every comparison tells the truth.
template <class Keys>
std::size_t setApartNotANumber(Keys v, std::size_t n) {
  std::size_t i = 0;
  while (i < n) {
    if (std::isnan(v.keys[i]))
      exchange(v, i, --n);
    else
      ++i;
  }
  return n;
}

template <class Keys>
void insertionSort(Keys v, std::size_t n) {
  for (std::size_t i = 1; i < n; ++i) {
    const auto item = v.take(i);
    std::size_t at = i;
    for (; at > 0 && v.keyOf(item) < v.keys[at - 1]; --at) v.copy(at, at - 1);
    v.put(at, item);
  }
}

// Lets the key at `at` sink to its place in a heap of n keys whose largest is the first.
template <class Keys>
void sink(Keys v, std::size_t at, std::size_t n) {
  const auto item = v.take(at);
  for (;;) {
    std::size_t child = 2 * at + 1;
    if (child >= n) break;
    if (child + 1 < n && v.keys[child] < v.keys[child + 1]) ++child;
    if (!(v.keyOf(item) < v.keys[child])) break;
    v.copy(at, child);
    at = child;
  }
  v.put(at, item);
}

template <class Keys>
void heapSort(Keys v, std::size_t n, StopQuestion& question) {
  constexpr std::size_t sinksBetweenQuestions = 1 << 16;
  for (std::size_t i = n / 2; i-- > 0;) {
    if (i % sinksBetweenQuestions == 0 && question.ask()) return;
    sink(v, i, n);
  }
  for (std::size_t last = n; last-- > 1;) {
    if (last % sinksBetweenQuestions == 0 && question.ask()) return;
    exchange(v, 0, last);
    sink(v, 0, last);
  }
}

// One comparator of a network. The two results ask the same question, so that 0 and -0, which are
// equal, are neither lost nor doubled; each is one instruction without a branch.
[[gnu::always_inline]] inline void order(double& a, double& b) {
  const double low = b < a ? b : a;
  const double high = a > b ? a : b;
  a = low;
  b = high;
}

struct Comparator {
  std::size_t low, high;
};

// Batcher's odd-even merge sort of 16 keys (Knuth, The Art of Computer Programming, volume 3,
// section 5.3.4).
constexpr std::size_t comparatorCount = 63;
constexpr std::array<Comparator, comparatorCount> comparators = [] {
  std::array<Comparator, comparatorCount> list{};
  std::size_t count = 0;
  for (std::size_t p = 1; p < networkSize; p *= 2)
    for (std::size_t step = p; step >= 1; step /= 2)
      for (std::size_t start = step % p; start + step < networkSize; start += 2 * step)
        for (std::size_t i = start; i < start + step && i + step < networkSize; ++i)
          if (i / (2 * p) == (i + step) / (2 * p)) list.at(count++) = {i, i + step};
  return list;
}();

// The places left over are filled with infinity. Written out in full, the network runs in
// registers for the most part.
void networkSort(double* keys, std::size_t n) {
  std::array<double, networkSize> k;
  k.fill(std::numeric_limits<double>::infinity());
  std::copy_n(keys, n, k.begin());
  [&k]<std::size_t... at>(std::index_sequence<at...>) {
    (order(k[comparators[at].low], k[comparators[at].high]), ...);
  }
  (std::make_index_sequence<comparatorCount>());
  std::copy_n(k.begin(), n, keys);
}

// Sorts a part that is short enough for it.
bool sortShort(PlainKeys v, std::size_t n) {
  if (n > networkSize) return false;
  networkSort(v.keys, n);
  return true;
}

bool sortShort(PairedKeys v, std::size_t n) {
  if (n > insertionSize) return false;
  insertionSort(v, n);
  return true;
}

std::size_t medianOf(const double* keys, std::size_t a, std::size_t b, std::size_t c) {
  if (keys[b] < keys[a]) std::swap(a, b);
  if (keys[c] < keys[b]) b = keys[c] < keys[a] ? a : c;
  return b;
}

std::size_t choosePivot(const double* keys, std::size_t n) {
  const std::size_t eighth = n / 8;
  const std::size_t a = eighth, b = n / 2, c = n - 1 - eighth;
  if (n < manyKeys) return medianOf(keys, a, b, c);
  const std::size_t near = eighth / 2;
  return medianOf(keys, medianOf(keys, a - near, a, a + near),
                  medianOf(keys, b - near, b, b + near), medianOf(keys, c - near, c, c + near));
}

// Moves the keys for which `goesLeft` to the front and returns how many they are. Each step moves
// two keys whatever the answer, along a gap that wanders through the part.
template <class Keys, class GoesLeft>
[[gnu::always_inline]] inline std::size_t partition(Keys v, std::size_t n, GoesLeft goesLeft,
                                                    StopQuestion& question) {
  if (n == 0) return 0;
  const auto first = v.take(0);
  std::size_t left = 0, gap = 0;
  for (std::size_t i = 1;;) {
    for (const std::size_t end = std::min(n, i + keysBetweenQuestions); i < end; ++i) {
      // Invariant: the gap lies at or beyond `left`; keys before `left` go left, others do not.
      const auto item = v.take(i);
      v.copy(gap, left);
      v.put(left, item);
      gap = i;
      left += goesLeft(Keys::keyOf(item)) ? 1u : 0u;
    }
    // The first key fills the gap, and takes it along to `left`.
    v.copy(gap, left);
    v.put(left, first);
    if (i >= n || question.ask()) break;
    gap = left;
  }
  return left + (goesLeft(Keys::keyOf(first)) ? 1u : 0u);
}

// Sorts n keys. `floor`, if given, is a key that none of them is below: when the pivot equals it,
// all keys equal to it are set apart at once, so that few different keys are sorted in linear time.
template <class Keys>
void quickSort(Keys v, std::size_t n, int budget, const double* floor, StopQuestion& question) {
  while (!question.stopped() && !sortShort(v, n)) {
    if (budget-- == 0) {
      heapSort(v, n, question);
      return;
    }
    const std::size_t at = choosePivot(v.keys, n);
    const double pivot = v.keys[at];
    if (floor && !(*floor < pivot)) {
      const std::size_t equal = partition(
          v, n, [pivot](double x) { return !(pivot < x); }, question);
      v = v.from(equal);
      n -= equal;
      floor = nullptr;
      continue;
    }
    exchange(v, 0, at);
    const std::size_t below = partition(
        v.from(1), n - 1, [pivot](double x) { return x < pivot; }, question);
    exchange(v, 0, below);
    quickSort(v, below, budget, floor, question);
    v = v.from(below);
    floor = v.keys;
    v = v.from(1);
    n -= below + 1;
  }
}

template <class Keys>
Outcome sortKeys(Keys v, std::size_t n, const InterruptTest& interrupted) {
  n = setApartNotANumber(v, n);
  StopQuestion question(interrupted);
  quickSort(v, n, 2 * static_cast<int>(std::bit_width(n)), nullptr, question);
  return question.stopped() ? Outcome::interrupted : Outcome::done;
}

}  // namespace

Outcome sortAscending(std::span<double> values, const InterruptTest& interrupted) {
  return sortKeys(PlainKeys{values.data()}, values.size(), interrupted);
}

Outcome sortAscending(std::span<double> keys, std::span<double> companions,
                      const InterruptTest& interrupted) {
  return sortKeys(PairedKeys{keys.data(), companions.data()}, keys.size(), interrupted);
}

Outcome heapSortAscending(std::span<double> keys, std::span<double> companions,
                          const InterruptTest& interrupted) {
  StopQuestion question(interrupted);
  heapSort(PairedKeys{keys.data(), companions.data()}, keys.size(), question);
  return question.stopped() ? Outcome::interrupted : Outcome::done;
}

}  // namespace vexa
