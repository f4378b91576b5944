#include "numlib/linear/element_stiffness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace vexa {
namespace {

using Numbers = std::vector<double>;

constexpr double pi = 3.141592653589793;

double largest(const ElementStiffness& e) {
  double found = 0;
  for (const double x : e.stiffness) found = std::max(found, std::fabs(x));
  return found;
}

Numbers multiply(ConstMatrixView a, const Numbers& v) {
  Numbers product(v.size());
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j < a.cols; ++j)
      product[static_cast<std::size_t>(i)] += a(i, j) * v[static_cast<std::size_t>(j)];
  return product;
}

struct Case {
  std::string what;
  ElementStiffness element;
  std::vector<Numbers> rigidMotions;
};

// Displacements and small rotations of the whole element, in the unknowns of each kind.
std::vector<Case> cases() {
  const NodeDistance flat{3, -4, 0}, skew{1.5, -2, 0.7}, steep{1e-7, 2e-8, -5};
  const auto inSpace = [](const NodeDistance& d) {
    return std::vector<Numbers>{
        {1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0},        {0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0},
        {0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0},        {0, 0, 0, 1, 0, 0, 0, -d.dz, d.dy, 1, 0, 0},
        {0, 0, 0, 0, 1, 0, d.dz, 0, -d.dx, 0, 1, 0}, {0, 0, 0, 0, 0, 1, -d.dy, d.dx, 0, 0, 0, 1},
    };
  };
  const SpaceSection section{.EA = 900, .EIy = 130, .EIz = 70, .GJ = 40};
  return {
      {"beam", beamStiffness(12, 2.5), {{1, 0, 1, 0}, {0, 1, 2.5, 1}}},
      {"plane bar", planeBarStiffness(50, flat), {{1, 0, 1, 0}, {0, 1, 0, 1}, {0, 0, 4, 3}}},
      {"space bar",
       spaceBarStiffness(50, skew),
       {{1, 2, 3, 1, 2, 3}, {0, 0, 0, 2, 1.5, 0}, {0, 0, 0, 0, 0.7, 2}}},
      {"plane frame",
       planeFrameStiffness(1000, 500, flat),
       {{1, 0, 0, 1, 0, 0}, {0, 1, 0, 0, 1, 0}, {0, 0, 1, 4, 3, 1}}},
      {"grid",
       gridStiffness(500, 80, flat),
       {{1, 0, 0, 1, 0, 0}, {0, 1, 0, -4, 1, 0}, {0, 0, 1, -3, 0, 1}}},
      {"space frame", spaceFrameStiffness(section, skew, 0.4), inSpace(skew)},
      {"upright space frame", spaceFrameStiffness(section, steep, -1), inSpace(steep)},
  };
}

TEST(ElementStiffness, SymmetricAndWithoutForceInRigidMotion) {
  for (const Case& c : cases()) {
    const ConstMatrixView k = c.element.stiffnessView();
    for (int i = 0; i < k.rows; ++i)
      for (int j = 0; j < i; ++j) EXPECT_EQ(k(i, j), k(j, i)) << c.what << i << j;
    for (const Numbers& motion : c.rigidMotions)
      for (const double force : multiply(k, motion))
        EXPECT_NEAR(force, 0, 1e-12 * largest(c.element)) << c.what;
  }
}

TEST(ElementStiffness, RotationIsOrthogonal) {
  for (const Case& c : cases()) {
    const ConstMatrixView r = c.element.rotationView();
    for (int i = 0; i < r.rows; ++i)
      for (int j = 0; j < r.rows; ++j) {
        double sum = 0;
        for (int k = 0; k < r.cols; ++k) sum += r(i, k) * r(j, k);
        EXPECT_NEAR(sum, i == j, 1e-15) << c.what << i << j;
      }
  }
}

// Example values worked out by hand: L = 5 with cosine 0.6 and sine 0.8, and a bar along x.
TEST(ElementStiffness, KnownElements) {
  const ElementStiffness p = planeFrameStiffness(1000, 500, {3, 4, 0});
  const double plane[][3] = {{1, 1, 102.72}, {1, 2, 72.96}, {1, 3, -96}, {2, 2, 145.28},
                             {2, 3, 72},     {3, 3, 400},   {3, 6, 200}};
  for (const auto& [i, j, value] : plane)
    EXPECT_NEAR(p.stiffnessView().at(int(i), int(j)), value, 8 * 400 * 1.2e-16) << i << j;
  const ElementStiffness s =
      spaceFrameStiffness({.EA = 1000, .EIy = 200, .EIz = 500, .GJ = 80}, {4, 0, 0}, 0);
  const double space[][3] = {{1, 1, 250}, {2, 2, 93.75}, {3, 3, 37.5},  {4, 4, 20},
                             {5, 5, 200}, {6, 6, 500},   {2, 6, 187.5}, {3, 5, -75}};
  for (const auto& [i, j, value] : space)
    EXPECT_EQ(s.stiffnessView().at(int(i), int(j)), value) << i << j;
}

TEST(ElementStiffness, KindsAgreeWithEachOther) {
  const NodeDistance d{3, 4, 0};
  const SpaceSection section{.EA = 1000, .EIy = 200, .EIz = 500, .GJ = 80};
  const ElementStiffness s = spaceFrameStiffness(section, d, 0);
  const ElementStiffness p = planeFrameStiffness(1000, 500, d), g = gridStiffness(200, 80, d);
  constexpr int inPlane[] = {0, 1, 5, 6, 7, 11}, across[] = {2, 3, 4, 8, 9, 10};
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j < 6; ++j) {
      EXPECT_NEAR(s.stiffnessView()(inPlane[i], inPlane[j]), p.stiffnessView()(i, j), 1e-13);
      EXPECT_NEAR(s.stiffnessView()(across[i], across[j]), g.stiffnessView()(i, j), 1e-13);
    }
  // A quarter turn exchanges the two bending stiffnesses.
  const ElementStiffness turned = spaceFrameStiffness(section, {1, 2, 3}, pi / 2);
  const ElementStiffness exchanged =
      spaceFrameStiffness({.EA = 1000, .EIy = 500, .EIz = 200, .GJ = 80}, {1, 2, 3}, 0);
  for (std::size_t k = 0; k < turned.stiffness.size(); ++k)
    EXPECT_NEAR(turned.stiffness[k], exchanged.stiffness[k], 1e-12);
  // Upright: local y is global Y, so bending in the x-y plane moves node 2 along Y.
  const ElementStiffness upright = spaceFrameStiffness(section, {0, 0, 2}, 0);
  EXPECT_EQ(upright.stiffnessView()(7, 7), 12 * 500 / 8.0);
  EXPECT_EQ(upright.stiffnessView()(6, 6), 12 * 200 / 8.0);
}

}  // namespace
}  // namespace vexa
