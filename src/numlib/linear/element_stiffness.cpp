#include "numlib/linear/element_stiffness.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace vexa {

namespace {

using Real = long double;
using Vector = std::array<Real, 3>;

// A square matrix while it is being put together; elements are counted from 0.
class Square {
 public:
  explicit Square(int order) : m_order(order), m_elements(place(order, 0)) {}

  int order() const { return m_order; }
  Real& operator()(int i, int j) { return m_elements[place(i, j)]; }
  Real operator()(int i, int j) const { return m_elements[place(i, j)]; }

  // The four places of a spring between two unknowns.
  void addSpring(int i, int j, Real stiffness) {
    (*this)(i, i) += stiffness;
    (*this)(j, j) += stiffness;
    (*this)(i, j) -= stiffness;
    (*this)(j, i) -= stiffness;
  }

  // Bending between deflections v1, v2 and rotations t1, t2. `sense` is -1 where a positive
  // rotation lowers the slope.
  void addBending(Real EI, Real L, std::array<int, 4> unknowns, Real sense) {
    const Real shear = 12 * EI / (L * L * L), corner = sense * 6 * EI / (L * L);
    const Real near = 4 * EI / L, far = 2 * EI / L;
    const Real terms[4][4] = {{shear, corner, -shear, corner},
                              {corner, near, -corner, far},
                              {-shear, -corner, shear, -corner},
                              {corner, far, -corner, near}};
    for (std::size_t i = 0; i < 4; ++i)
      for (std::size_t j = 0; j < 4; ++j) (*this)(unknowns[i], unknowns[j]) += terms[i][j];
  }

  // Repeats a block along the diagonal.
  void addBlocks(const std::array<Vector, 3>& block, int size) {
    for (int first = 0; first < m_order; first += size)
      for (int i = 0; i < size; ++i)
        for (int j = 0; j < size; ++j)
          (*this)(first + i, first + j) =
              block[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
  }

 private:
  std::size_t place(int i, int j) const {
    return static_cast<std::size_t>(i) * static_cast<std::size_t>(m_order) +
           static_cast<std::size_t>(j);
  }

  int m_order;
  std::vector<Real> m_elements;
};

Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Real norm(const Vector& a) { return std::hypot(a[0], a[1], a[2]); }

Vector scaled(const Vector& a, Real factor) {
  return {a[0] * factor, a[1] * factor, a[2] * factor};
}

Real lengthOf(const NodeDistance& d) { return norm({d.dx, d.dy, d.dz}); }

Vector direction(const NodeDistance& d) { return scaled({d.dx, d.dy, d.dz}, 1 / lengthOf(d)); }

// A negative zero becomes 0: it would be printed as -0.
double elementOf(Real x) { return static_cast<double>(x) + 0.0; }

// rotation^T * local * rotation, one triangle of it, mirrored.
ElementStiffness toGlobal(const Square& local, const Square& rotation) {
  const int n = local.order();
  Square half(n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j)
      for (int k = 0; k < n; ++k) half(i, j) += local(i, k) * rotation(k, j);
  ElementStiffness element;
  element.order = n;
  const auto size = static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
  element.stiffness.resize(size);
  element.rotation.resize(size);
  const MatrixView stiffness{element.stiffness.data(), n, n};
  const MatrixView turned{element.rotation.data(), n, n};
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) turned(i, j) = elementOf(rotation(i, j));
    for (int j = 0; j <= i; ++j) {
      Real sum = 0;
      for (int k = 0; k < n; ++k) sum += rotation(k, i) * half(k, j);
      stiffness(i, j) = stiffness(j, i) = elementOf(sum);
    }
  }
  return element;
}

// Local axes of an element in the plane of x and y, as rows.
std::array<Vector, 3> planeAxes(const NodeDistance& d) {
  const Vector x = direction({d.dx, d.dy, 0});
  return {x, Vector{-x[1], x[0], 0}, Vector{0, 0, 1}};
}

std::array<Vector, 3> spaceAxes(const NodeDistance& d, Real turn) {
  constexpr Real vertical = 1e-6L;
  const Vector x = direction(d);
  Vector y{-x[1], x[0], 0};
  if (std::hypot(x[0], x[1]) < vertical) {
    // Global Y, less what little of it lies along x.
    y = {-x[1] * x[0], 1 - x[1] * x[1], -x[1] * x[2]};
  }
  y = scaled(y, 1 / norm(y));
  const Vector z = cross(x, y);
  const Real c = std::cos(turn), s = std::sin(turn);
  std::array<Vector, 3> axes{x, {}, {}};
  for (std::size_t i = 0; i < 3; ++i) {
    axes[1][i] = c * y[i] + s * z[i];
    axes[2][i] = c * z[i] - s * y[i];
  }
  return axes;
}

ElementStiffness barStiffness(double EA, const NodeDistance& d, int directions) {
  Square local(2 * directions), rotation(2 * directions);
  local.addSpring(0, directions, EA / lengthOf(directions == 2 ? NodeDistance{d.dx, d.dy, 0} : d));
  rotation.addBlocks(directions == 2 ? planeAxes(d) : spaceAxes(d, 0), directions);
  return toGlobal(local, rotation);
}

}  // namespace

double NodeDistance::length() const { return std::hypot(dx, dy, dz); }

ElementStiffness beamStiffness(double EI, double length) {
  Square local(4), rotation(4);
  local.addBending(EI, length, {0, 1, 2, 3}, 1);
  for (int i = 0; i < 4; ++i) rotation(i, i) = 1;
  return toGlobal(local, rotation);
}

ElementStiffness planeBarStiffness(double EA, const NodeDistance& d) {
  return barStiffness(EA, d, 2);
}

ElementStiffness spaceBarStiffness(double EA, const NodeDistance& d) {
  return barStiffness(EA, d, 3);
}

ElementStiffness planeFrameStiffness(double EA, double EI, const NodeDistance& d) {
  const Real L = lengthOf({d.dx, d.dy, 0});
  Square local(6), rotation(6);
  local.addSpring(0, 3, EA / L);
  local.addBending(EI, L, {1, 2, 4, 5}, 1);
  rotation.addBlocks(planeAxes(d), 3);
  return toGlobal(local, rotation);
}

ElementStiffness gridStiffness(double EI, double GJ, const NodeDistance& d) {
  const Real L = lengthOf({d.dx, d.dy, 0});
  Square local(6), rotation(6);
  local.addSpring(1, 4, GJ / L);
  local.addBending(EI, L, {0, 2, 3, 5}, -1);
  const std::array<Vector, 3> axes = planeAxes(d);
  rotation.addBlocks(
      {Vector{1, 0, 0}, Vector{0, axes[0][0], axes[0][1]}, Vector{0, axes[1][0], axes[1][1]}}, 3);
  return toGlobal(local, rotation);
}

ElementStiffness spaceFrameStiffness(const SpaceSection& section, const NodeDistance& d,
                                     double turn) {
  const Real L = lengthOf(d);
  Square local(12), rotation(12);
  local.addSpring(0, 6, section.EA / L);
  local.addSpring(3, 9, section.GJ / L);
  local.addBending(section.EIz, L, {1, 5, 7, 11}, 1);
  local.addBending(section.EIy, L, {2, 4, 8, 10}, -1);
  rotation.addBlocks(spaceAxes(d, turn), 3);
  return toGlobal(local, rotation);
}

}  // namespace vexa
