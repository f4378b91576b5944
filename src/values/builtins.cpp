#include "values/builtins.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string>

#include "graphics/plot/shape_builtins.h"
#include "interp/errors.h"
#include "interp/file_builtins.h"
#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "numlib/calculus/calculus_builtins.h"
#include "numlib/calculus/gauss_points_builtins.h"
#include "numlib/eigen/eigen_builtins.h"
#include "numlib/finance/finance_builtins.h"
#include "numlib/fitting/fitting_builtins.h"
#include "numlib/fitting/nfit_builtins.h"
#include "numlib/interpolation/interpolation_builtins.h"
#include "numlib/interpolation/polynomial_builtins.h"
#include "numlib/linear/linear_builtins.h"
#include "numlib/random/random_builtins.h"
#include "numlib/special/complex_builtins.h"
#include "numlib/special/special_builtins.h"
#include "numlib/statistics/statistics_builtins.h"
#include "numlib/transforms/transform_builtins.h"
#include "values/catalogs.h"
#include "values/evaluator.h"
#include "values/form_builtin.h"
#include "values/message_builtins.h"
#include "values/print_builtins.h"
#include "values/row_column_builtins.h"
#include "values/run_options.h"
#include "values/scalar_functions.h"
#include "values/text_string.h"
#include "values/value_builtins.h"

namespace vexa {

namespace {

// Names that share a handler, separated by blanks.
struct Group {
  Handler handler;
  std::string_view names;
};

// `!` and `@` as built-ins: the expression behind the mark, which is the current token.
double markedExpression(char mark) {
  Value value;
  evalMatrixExpression(value, mark, true);
  rescanToken();
  setBuiltinResult(value.matrix);
  return mark == '!' ? numberOf(value) : 0.0;
}

double matrixExpression() { return markedExpression('!'); }
double complexExpression() { return markedExpression('@'); }

double stringAssignment() {
  evalStringAssignment();
  rescanToken();
  return noResult();
}

double unavailable() {
  const std::string_view name =
      builtinNames[static_cast<std::size_t>(interpreter().currentBuiltin)];
  messageBox(" " + std::string(name) + " is not available yet");
  raiseError(ErrorKey::invalidData);
  return 0.0;
}

constexpr Group groups[] = {
    // Expressions.
    {matrixExpression, "!"},
    {complexExpression, "@"},
    {stringAssignment, "%"},
    // Printing and messages.
    {prtmatBuiltin, "prtmat"},
    {hidemessageBuiltin, "hidemessage"},
    {catBuiltin, "cat"},
    {printBuiltin, "print debugprint"},
    {cprintBuiltin, "cprint"},
    {messageBuiltin, "notice yesno postmessage isvar"},
    // Scalar mathematical functions.
    {scalarFunctionBuiltin,
     "abs acos asin atan ceil cos cosh erf exp factrl floor gammaln log10 ln round sin sinh sqrt "
     "tan tanh truncate"},
    {twoArgumentBuiltin,
     "atan2 beta binom ellipe ellipf ellipi gammainc gez hcoc hcos hsoc hsos hypot mod sign"},
    {betaincBuiltin, "betainc"},
    {besselBuiltin, "bessi bessj bessk bessy"},
    {complexFunctionBuiltin, "cabs ccos cexp cln csin csqrt ctan ptor rtop"},
    // Run-time options and value built-ins.
    {deleteBuiltin, "delete"},
    {execBuiltin, "exec"},
    {useoptionBuiltin, "useoption"},
    {defmatBuiltin, "defmat defsym"},
    {orderBuiltin, "resizemat unit zero zeronew"},
    {subopBuiltin, "subop"},
    {rowColumnBuiltin, "deletecol deleterow insertcol insertrow"},
    {mantissaBuiltin, "mantissa"},
    {viewBuiltin, "view select debugview"},
    {sizeBuiltin, "ncol nrow"},
    // Tool windows.
    {calcBuiltin, "calc"},
    {tofractionBuiltin, "tofraction"},
    {conversionBuiltin, "str2val val2str"},
    {informBuiltin, "inform"},
    {elapsedTimeBuiltin, "t#"},
    {sleepBuiltin, "sleep"},
    {gotourlBuiltin, "gotourl"},
    // Data files.
    {globalvarsBuiltin, "readglobalvars saveglobalvars"},
    {closefileBuiltin, "closefile"},
    {closeallfilesBuiltin, "closeallfiles"},
    {openfiletowriteBuiltin, "openfiletowrite"},
    {openfiletoreadBuiltin, "openfiletoread"},
    {rewindfileBuiltin, "rewindfile"},
    {writefileBuiltin, "writefile"},
    {readfileBuiltin, "readfile"},
    // Statistics, random numbers, transforms.
    {statisticsBuiltin, "count max mean min stdv summat"},
    {randBuiltin, "rand randnorm"},
    {randfillBuiltin, "randfill randnormfill"},
    {sortBuiltin, "sort"},
    {fftBuiltin, "fft"},
    // Numerical library.
    {determinantBuiltin, "det invert"},
    {solveBuiltin, "solve symsolv"},
    {choleskyBuiltin, "cholesky"},
    {gaussBuiltin, "gauss"},
    {tmultBuiltin, "tmult"},
    {cmultBuiltin, "cmult"},
    {bandfBuiltin, "bandf"},
    {frameBuiltin, "frame"},
    {trisolvBuiltin, "trisolv"},
    {oneVariableBuiltin, "integ maxz1 minz1 root1"},
    {imtegBuiltin, "imteg"},
    {derivBuiltin, "deriv"},
    {seriesBuiltin, "series"},
    {gradBuiltin, "grad"},
    {fieldBuiltin, "curl div jacob"},
    {minzsBuiltin, "minzs"},
    {odesintBuiltin, "odesint"},
    {nfitBuiltin, "nfit"},
    {eigenBuiltin, "eigen"},
    {svdBuiltin, "svd"},
    {svsolveBuiltin, "svsolve"},
    {rootsBuiltin, "roots"},
    {polyBuiltin, "poly"},
    {polycoeBuiltin, "polycoe"},
    {gaussptBuiltin, "gausspt"},
    {interpolationBuiltin, "hermint hermit lint polint ratint"},
    {splineBuiltin, "spline splint"},
    {lookupBuiltin, "lookup"},
    {significanceBuiltin, "correlation ftest studente studentp studentu"},
    {lfitBuiltin, "lfit"},
    {lcfitBuiltin, "lcfit"},
    {simplxBuiltin, "simplx"},
    {movingaverageBuiltin, "movingaverage"},
    {moneyBuiltin, "cumipmt cumprinc fv intrate ipmt irr nper npv pmt ppmt pv xirr xnpv"},
    {dateBuiltin, "date2serial serial2date"},
    // Plotting.
    {rangeBuiltin, "getrange RGB setrange"},
    {shapeBuiltin, "plotellipse plotline plotrectangle setpictposition"},
};

// Names of the groups above whose part of the handler is still to come.
constexpr std::string_view laterMembers = "plot plotanimate";

// Groups whose handler is still to come.
constexpr std::string_view laterGroups[] = {
    // Plotting.
    "project",
    "poly2bezier",
    ("plotarc plotarcarrow plotarrow plotarrowatpoint plotarrowrange plotchord plotchordarrow "
     "plotcircle plotpie plotpiearrow"),
    "getorientation newdrawdocument setorientation",
    "plot3d plot3dcurve plotbox plothistogram",
    "clearplot duplicateselect getitemindex getop moveitems moveselect removeselect setop",
    "putpolar putxy putxyz",
    "plotaxes plotlinearscale plotlogscale",
    "plotbezier plotcontour plothbar plotmesh plotpoly plotvbar plotvectorfield plotxy",
    "loadbitmap positionitem",
    "plotpiechart",
    "duplicateitems hideitems hittest removeitems showitems",
    "setcliprect setselectrect",
};

// Names of a group above that are still to come.
constexpr std::string_view laterNames = "scaleitem zoominpoint zoomnormal zoomoutpoint";

constexpr int designedGroups = 94;
static_assert(std::size(groups) + std::size(laterGroups) == designedGroups);

using Table = std::array<BuiltinEntry, builtinNames.size()>;
using Entered = std::array<bool, builtinNames.size()>;

consteval void enterGroup(Table& table, Entered& entered, Handler handler, std::string_view names) {
  while (!names.empty()) {
    const std::string_view name = names.substr(0, names.find(' '));
    const auto row = static_cast<std::size_t>(builtinCode(name));
    if (entered[row]) throw "a built-in stands in two groups";
    entered[row] = true;
    table[row] = {name, handler};
    names.remove_prefix(std::min(name.size() + 1, names.size()));
  }
}

consteval Table makeTable() {
  Table table{};
  Entered entered{};
  for (const Group& group : groups) enterGroup(table, entered, group.handler, group.names);
  enterGroup(table, entered, unavailable, laterMembers);
  for (const std::string_view names : laterGroups) enterGroup(table, entered, unavailable, names);
  enterGroup(table, entered, unavailable, laterNames);
  for (const bool present : entered)
    if (!present) throw "a built-in stands in no group";
  return table;
}

constexpr Table builtins = makeTable();

}  // namespace

std::span<const BuiltinEntry> builtinTable() { return builtins; }

int builtinGroupCount() { return designedGroups; }

bool builtinAvailable(int row) {
  return builtins[static_cast<std::size_t>(row)].handler != unavailable;
}

double callBuiltin(int row) {
  const NestingGuard nesting;
  InterpreterState& state = interpreter();
  // Arguments call built-ins too; a reader that still comes must see the marks of its own call.
  const int outerBuiltin = state.currentBuiltin;
  const char outerMode = state.builtinMode;
  state.builtinResultMatrix = nullptr;
  state.builtinResultOwner = nullptr;
  state.currentBuiltin = row;
  state.builtinMode = state.mode;
  state.noEcho = false;
  const PlainMode plain;
  const double value = builtins[static_cast<std::size_t>(row)].handler();
  state.currentBuiltin = outerBuiltin;
  state.builtinMode = outerMode;
  return value;
}

}  // namespace vexa
