#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "interp/interpreter_state.h"
#include "numlib/linear/element_stiffness.h"
#include "numlib/linear/linear_builtins.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

// The numbers of an element behind its matrix: how many there must and may be, and where the
// distances, or the length, begin.
struct ElementForm {
  char option;
  std::size_t least, most, distances;
};

constexpr ElementForm forms[] = {
    {'B', 2, 2, 1},  // EI, L
    {'T', 3, 4, 1},  // EA, dx, dy [, dz]
    {'P', 4, 4, 2},  // EA, EI, dx, dy
    {'G', 4, 4, 2},  // EI, GJ, dx, dy
    {'S', 7, 8, 4},  // EA, EIy, EIz, GJ, dx, dy, dz [, turn]
};

struct ElementNumbers {
  std::array<double, 8> values{};
  std::size_t count = 0;

  double operator[](std::size_t i) const { return values[i]; }
  std::span<const double> given() const { return std::span(values).first(count); }
};

ElementNumbers readNumbers(const ElementForm& form) {
  ElementNumbers numbers;
  while (numbers.count < form.least) {
    expectChar(',');
    numbers.values[numbers.count++] = evalScalarArg();
  }
  while (numbers.count < form.most && moreBeforeWords())
    numbers.values[numbers.count++] = evalScalarArg();
  return numbers;
}

NodeDistance distanceOf(const ElementForm& form, const ElementNumbers& x) {
  const std::size_t first = form.distances;
  if (form.option == 'B') return {x[first], 0, 0};
  const bool inSpace = form.option == 'S' || x.count == 4;
  return {x[first], x[first + 1], form.distances != 2 && inSpace ? x[first + 2] : 0};
}

ElementStiffness elementOf(const ElementForm& form, const ElementNumbers& x) {
  const NodeDistance d = distanceOf(form, x);
  switch (form.option) {
    case 'B':
      return beamStiffness(x[0], x[1]);
    case 'T':
      return x.count == 4 ? spaceBarStiffness(x[0], d) : planeBarStiffness(x[0], d);
    case 'P':
      return planeFrameStiffness(x[0], x[1], d);
    case 'G':
      return gridStiffness(x[0], x[1], d);
    default:
      return spaceFrameStiffness({.EA = x[0], .EIy = x[1], .EIz = x[2], .GJ = x[3]}, d,
                                 x[7] * interpreter().angles.userToRadians);
  }
}

// Numbers that are none are key 63, no length and one that is negative key 34.
bool checkNumbers(const ElementForm& form, const ElementNumbers& x) {
  if (!requireFinite(x.given())) return false;
  if (distanceOf(form, x).length() == 0) {
    refuse("frame> element of zero length");
    return false;
  }
  if (form.option != 'B' || x[1] > 0) return true;
  raiseError(ErrorKey::invalidData);
  return false;
}

}  // namespace

double frameBuiltin() {
  expectChar('(');
  const char option = readOption("BTPGS");
  const auto* form = std::ranges::find(forms, option, &ElementForm::option);
  if (form == std::end(forms)) return 0.0;
  expectChar(',');
  const std::string result = readResultName();
  const ElementNumbers numbers = readNumbers(*form);
  std::string rotation;
  for (WordReader words({"rotation="}); words.next();) {
    expectChar(',');
    rotation = readResultName();
  }
  if (!requireDistinct({result, rotation}) || !checkNumbers(*form, numbers)) return 0.0;

  const ElementStiffness element = elementOf(*form, numbers);
  if (!requireFinite(element.stiffness)) return 0.0;
  storeMatrix(result, element.stiffnessView());
  if (!rotation.empty()) storeMatrix(rotation, element.rotationView());
  return noResult();
}

}  // namespace vexa
