// Small matrices for the tests of decompositions, and how far one is from what it should be.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <random>
#include <span>
#include <utility>
#include <vector>

#include "numlib/matrix_view.h"

namespace vexa::checks {

inline constexpr double epsilon = std::numeric_limits<double>::epsilon();

struct Dense {
  Dense(int rowCount, int colCount, double value = 0.0)
      : rows(rowCount),
        cols(colCount),
        block(static_cast<std::size_t>(rowCount) * static_cast<std::size_t>(colCount), value) {}
  Dense(int rowCount, int colCount, std::vector<double> elements)
      : rows(rowCount), cols(colCount), block(std::move(elements)) {}
  Dense(int rowCount, int colCount, const std::function<double(int, int)>& element)
      : Dense(rowCount, colCount) {
    for (int i = 0; i < rows; ++i)
      for (int j = 0; j < cols; ++j) view()(i, j) = element(i, j);
  }

  MatrixView view() { return {block.data(), rows, cols}; }
  ConstMatrixView view() const { return {block.data(), rows, cols}; }
  double operator()(int i, int j) const { return view()(i, j); }

  int rows, cols;
  std::vector<double> block;
};

inline Dense diagonal(std::span<const double> d) {
  const int n = static_cast<int>(d.size());
  return {n, n, [d](int i, int j) { return i == j ? d[static_cast<std::size_t>(i)] : 0.0; }};
}

inline Dense transposed(const Dense& a) {
  return {a.cols, a.rows, [&](int i, int j) { return a(j, i); }};
}

inline Dense operator*(const Dense& a, const Dense& b) {
  return {a.rows, b.cols, [&](int i, int j) {
            double sum = 0.0;
            for (int k = 0; k < a.cols; ++k) sum += a(i, k) * b(k, j);
            return sum;
          }};
}

inline double largest(const Dense& a) {
  double result = 0.0;
  for (const double x : a.block) result = std::max(result, std::fabs(x));
  return result;
}

// The largest difference of two elements; infinite where one is not a number.
inline double distance(const Dense& a, const Dense& b) {
  double result = 0.0;
  for (std::size_t k = 0; k < a.block.size(); ++k) {
    const double difference = std::fabs(a.block[k] - b.block[k]);
    if (!(difference <= result)) result = std::isnan(difference) ? HUGE_VAL : difference;
  }
  return result;
}

// How far the columns of q are from an orthonormal set.
inline double skewness(const Dense& q) {
  return distance(transposed(q) * q,
                  diagonal(std::vector<double>(static_cast<std::size_t>(q.cols), 1.0)));
}

inline Dense hilbert(int rows, int cols) {
  return {rows, cols, [](int i, int j) { return 1.0 / (i + j + 1); }};
}

inline Dense randomDense(int rows, int cols, std::mt19937& generator) {
  std::uniform_real_distribution<double> fraction(-1, 1);
  return {rows, cols, [&](int, int) { return fraction(generator); }};
}

inline Dense randomSymmetric(int n, std::mt19937& generator) {
  const Dense a = randomDense(n, n, generator);
  return {n, n, [&](int i, int j) { return a(std::max(i, j), std::min(i, j)); }};
}

}  // namespace vexa::checks
