// Stiffness matrices of straight prismatic elements from node 1 to node 2, in global axes.
//
// EA, EI and GJ are products of a modulus and the area, the second moment of area, the torsion
// constant of the section; bending is that of slender beams. Unknowns stand node by node.
// Everything is formed in long double and rounded once.
#pragma once

#include <vector>

#include "numlib/matrix_view.h"

namespace vexa {

// Where node 2 lies as seen from node 1. Must not be zero: the length is divided by.
struct NodeDistance {
  double dx = 0, dy = 0, dz = 0;

  double length() const;
};

struct ElementStiffness {
  int order = 0;
  std::vector<double> stiffness;  // order x order, symmetric, in global axes
  std::vector<double> rotation;   // order x order, orthogonal; local = rotation * global

  ConstMatrixView stiffnessView() const { return {stiffness.data(), order, order}; }
  ConstMatrixView rotationView() const { return {rotation.data(), order, order}; }
};

// v, theta at each node: a beam along x.
ElementStiffness beamStiffness(double EI, double length);
// u, v or u, v, w: a bar between pins, in the plane or in space.
ElementStiffness planeBarStiffness(double EA, const NodeDistance& d);
ElementStiffness spaceBarStiffness(double EA, const NodeDistance& d);
// u, v, theta. Local y is local x turned by a right angle, counterclockwise.
ElementStiffness planeFrameStiffness(double EA, double EI, const NodeDistance& d);
// w, theta x, theta y: loaded across the plane of x and y.
ElementStiffness gridStiffness(double EI, double GJ, const NodeDistance& d);

// EIz bends in the local x-y plane, EIy in x-z.
struct SpaceSection {
  double EA = 0, EIy = 0, EIz = 0, GJ = 0;
};
// u, v, w, theta x, theta y, theta z. Local y is horizontal, global Z x local x; where local x is
// within 1e-6 of vertical it is global Y. Local z is x cross y. Then y and z are turned about x by
// `turn`, in radians.
ElementStiffness spaceFrameStiffness(const SpaceSection& section, const NodeDistance& d,
                                     double turn);

}  // namespace vexa
