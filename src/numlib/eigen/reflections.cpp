#include "numlib/eigen/reflections.h"

#include <algorithm>
#include <cmath>

#include "numlib/eigen/packs.h"
#include "numlib/linear/vector_kernels.h"

namespace vexa {

namespace {

// Magnitudes between 2^-range and 2^range can be squared, and any number of squares be added.
constexpr int kSafeRange = 400;

const StoredPack& pack(const double* x) { return *reinterpret_cast<const StoredPack*>(x); }
StoredPack& pack(double* x) {
  auto* const at = reinterpret_cast<StoredPack*>(x);
  return *at;
}

double sumOf(const double* lanes) {
  return ((lanes[0] + lanes[4]) + (lanes[1] + lanes[5])) +
         ((lanes[2] + lanes[6]) + (lanes[3] + lanes[7]));
}

// p = S u for the symmetric matrix S of which the lower triangle is given. Each element is loaded
// once and counts for its own place and for the mirrored one.
VEXA_WIDE_LOOPS void symmetricProduct(const double* s, std::ptrdiff_t stride, const double* u,
                                      double* p, std::ptrdiff_t n) {
  for (std::ptrdiff_t i = 0; i < n; ++i) {
    const double* const row = s + i * stride;
    const double factor = u[i];
    alignas(32) double lanes[2 * packSize] = {};
    Pack even = pack(lanes).lanes;
    Pack odd = even;
    std::ptrdiff_t j = 0;
    for (; j + 2 * packSize <= i; j += 2 * packSize) {
      even += pack(row + j).lanes * pack(u + j).lanes;
      odd += pack(row + j + packSize).lanes * pack(u + j + packSize).lanes;
      pack(p + j).lanes += factor * pack(row + j).lanes;
      pack(p + j + packSize).lanes += factor * pack(row + j + packSize).lanes;
    }
    pack(lanes).lanes = even;
    pack(lanes + packSize).lanes = odd;
    double sum = sumOf(lanes);
    for (; j < i; ++j) {
      sum += row[j] * u[j];
      p[j] += factor * row[j];
    }
    p[i] = sum + row[i] * factor;
  }
}

// The lower triangle of S - u q' - q u'.
VEXA_WIDE_LOOPS void subtractSymmetric(double* s, std::ptrdiff_t stride, const double* u,
                                       const double* q, std::ptrdiff_t n) {
  for (std::ptrdiff_t i = 0; i < n; ++i) {
    double* const row = s + i * stride;
    const double ui = u[i];
    const double qi = q[i];
    std::ptrdiff_t j = 0;
    for (; j + packSize <= i + 1; j += packSize)
      pack(row + j).lanes -= ui * pack(q + j).lanes + qi * pack(u + j).lanes;
    for (; j <= i; ++j) row[j] -= ui * q[j] + qi * u[j];
  }
}

VEXA_WIDE_LOOPS double product(const double* a, const double* b, std::ptrdiff_t n) {
  alignas(32) double lanes[2 * packSize] = {};
  Pack even = pack(lanes).lanes;
  Pack odd = even;
  std::ptrdiff_t k = 0;
  for (; k + 2 * packSize <= n; k += 2 * packSize) {
    even += pack(a + k).lanes * pack(b + k).lanes;
    odd += pack(a + k + packSize).lanes * pack(b + k + packSize).lanes;
  }
  pack(lanes).lanes = even;
  pack(lanes + packSize).lanes = odd;
  double sum = sumOf(lanes);
  for (; k < n; ++k) sum += a[k] * b[k];
  return sum;
}

VEXA_WIDE_LOOPS void addProductsTo(double* rows, std::ptrdiff_t stride, std::ptrdiff_t count,
                                   const double* f, const double* y, std::ptrdiff_t n) {
  for (std::ptrdiff_t k = 0; k < count; ++k, rows += stride) {
    const double factor = f[k];
    std::ptrdiff_t j = 0;
    for (; j + packSize <= n; j += packSize) pack(rows + j).lanes += factor * pack(y + j).lanes;
    for (; j < n; ++j) rows[j] += factor * y[j];
  }
}

}  // namespace

double rowProduct(const double* a, const double* b, int n) { return product(a, b, n); }

void addRows(double* y, const double* factors, const SubMatrix& block) {
  vectorKernels().exactAddRows(y, factors, block.rows, block.data, block.stride,
                               static_cast<std::size_t>(block.cols));
}

void addProducts(const SubMatrix& block, const double* factors, const double* y) {
  addProductsTo(block.data, block.stride, block.rows, factors, y, block.cols);
}

Reflection makeReflection(std::span<double> x, int pivot) {
  const auto at = static_cast<std::size_t>(pivot);
  double others = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i)
    if (i != at && x[i] != 0.0) others = 1.0;
  if (others == 0.0) return {0.0, x[at]};

  const double scale = safeScale(largestMagnitude(x));
  if (scale != 1.0)
    for (double& element : x) element *= scale;
  const int n = static_cast<int>(x.size());
  // The sign opposite to the pivot's: the difference below cannot cancel.
  const double root = -std::copysign(std::sqrt(rowProduct(x.data(), x.data(), n)), x[at]);
  const double h = root * root - x[at] * root;
  x[at] -= root;
  return {h, root / scale};
}

void reflectColumns(const SubMatrix& block, std::span<const double> u, double h,
                    std::span<double> work) {
  const auto sums = work.first(static_cast<std::size_t>(block.cols));
  std::ranges::fill(sums, 0.0);
  addRows(sums.data(), u.data(), block);
  for (double& sum : sums) sum /= -h;
  addProducts(block, u.data(), sums.data());
}

void reflectRows(const SubMatrix& block, std::span<const double> u, double h) {
  for (int i = 0; i < block.rows; ++i) {
    double* const row = block.row(i);
    const double factor = -rowProduct(row, u.data(), block.cols) / h;
    addProductsTo(row, 0, 1, &factor, u.data(), block.cols);
  }
}

void reflectSymmetric(const SubMatrix& block, std::span<const double> u, double h,
                      std::span<double> work) {
  const int n = block.rows;
  const auto p = work.first(static_cast<std::size_t>(n));
  multiplySymmetric(block, u, p);
  makePartner(p, u, h);
  subtractSymmetric(block.data, block.stride, u.data(), p.data(), n);
}

void multiplySymmetric(const SubMatrix& block, std::span<const double> u, std::span<double> p) {
  symmetricProduct(block.data, block.stride, u.data(), p.data(), block.rows);
}

void makePartner(std::span<double> p, std::span<const double> u, double h) {
  for (double& element : p) element /= h;
  const double half = rowProduct(u.data(), p.data(), static_cast<int>(u.size())) / (h + h);
  for (std::size_t i = 0; i < p.size(); ++i) p[i] -= half * u[i];
}

double safeScale(double largest) {
  if (largest == 0.0 || !std::isfinite(largest)) return 1.0;
  const int exponent = std::ilogb(largest);
  if (std::abs(exponent) <= kSafeRange) return 1.0;
  // The reciprocal of a scale must be a number too, also where denormal numbers are scaled up.
  return std::ldexp(1.0, std::min(-exponent, 1022));
}

double largestMagnitude(std::span<const double> x) {
  double largest = 0.0;
  for (const double element : x) largest = std::max(largest, std::fabs(element));
  return largest;
}

}  // namespace vexa
