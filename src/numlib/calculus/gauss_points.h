// Nodes and weights of Gauss quadrature: the integral of W(x) f(x) is near the sum of w[i] f(x[i]),
// and exactly that for polynomials f up to the degree 2n - 1.
#pragma once

#include <vector>

namespace vexa {

inline constexpr int gaussPointLimit = 500;

enum class GaussFamily {
  legendre,   // W = 1 on [-1, 1]
  laguerre,   // x^alpha e^-x from 0 on, alpha > -1
  hermite,    // e^(-x^2) on the whole line
  chebyshev,  // 1/sqrt(1 - x^2) on [-1, 1]
  jacobi,     // (1 - x)^alpha (1 + x)^beta on [-1, 1], both > -1
};

struct GaussWeight {
  GaussFamily family = GaussFamily::legendre;
  double alpha = 0, beta = 0;
};

struct GaussPoints {
  std::vector<double> nodes, weights;
};

// n nodes in ascending order with their weights. Families that are symmetric about 0 come out
// exactly so, with a node of exactly 0 for odd n. Weights below the range of double are 0.
//
// Eigenvalues of the recurrence matrix (Golub and Welsch, Mathematics of Computation 23, 1969) are
// the starting values of Newton steps on the orthonormal recurrence in long double; weights are the
// reciprocal sums of its squares.
GaussPoints gaussPoints(int n, const GaussWeight& weight);

// Legendre's points on [from, to]; with from > to the weights are negative, the nodes ascend.
GaussPoints gaussPointsBetween(int n, double from, double to);

}  // namespace vexa
