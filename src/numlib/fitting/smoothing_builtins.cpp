#include <limits>
#include <span>
#include <string>
#include <vector>

#include "numlib/fitting/fitting_builtins.h"
#include "numlib/fitting/moving_average.h"
#include "numlib/linear/linear_common_builtins.h"
#include "values/numeric_arguments.h"

namespace vexa {

double movingaverageBuiltin() {
  expectChar('(');
  DataArgument data = readData();
  expectChar(',');
  const double length = evalScalarArg();
  expectChar(',');
  const std::string name = readResultName();
  WindowEnds ends = WindowEnds::inside;
  for (WordReader words({"same"}); words.next();) ends = WindowEnds::cutOff;
  if (!requireDistinct({name}, {data.matrix()})) return 0.0;

  const std::span<const double> y = data.elements();
  if (!requireFinite(y)) return 0.0;
  constexpr std::size_t longest = std::numeric_limits<int>::max();
  const int n = requireWhole(length, 1, static_cast<int>(std::min(y.size(), longest)));
  if (ends == WindowEnds::cutOff && n % 2 == 0) {
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  storeRow(name, movingAverage(y, static_cast<std::size_t>(n), ends, askUser));
  return noResult();
}

}  // namespace vexa
