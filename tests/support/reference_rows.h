#pragma once

// Tables of reference values in tests/data, and how far a result is from them.

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace vexa {

// The arguments of a row and, in its last column, the value they should give. A first column that
// is no number, within quotes where it has commas, is a name or the text of a function. A column
// may be a list, numbers with blanks between them.
struct ReferenceRow {
  std::string text;
  std::vector<double> arguments;           // of lists the first element
  std::vector<std::vector<double>> lists;  // the same columns, whole
  long double value = 0;

  double operator[](std::size_t index) const { return arguments[index]; }
  std::span<const double> list(std::size_t index) const { return lists[index]; }
};

// The numbers of a text, separated by blanks.
std::vector<double> numbersOf(const std::string& text);

// The rows of a file below tests/data, its heading passed over. Throws when there is none.
std::vector<ReferenceRow> referenceRows(const std::string& file);

// One unit in the last place of a double next to the value.
double ulpOf(long double value);

}  // namespace vexa
