#pragma once

// The 240 names of the built-in functions. The code of a built-in is its row here, so the order is
// part of the design.

#include <array>
#include <string_view>

namespace vexa {

inline constexpr std::array<std::string_view, 240> builtinNames = {
    "!", "@", "%", "abs", "acos", "asin", "atan", "atan2", "bandf", "bessi", "bessj", "bessk",
    "bessy", "beta", "betainc", "binom", "cabs", "calc", "cat", "ccos", "ceil", "cexp",
    "cholesky", "clearplot", "closefile", "closeallfiles", "cln", "cmult", "correlation", "cos",
    "cosh", "count", "cprint", "csin", "csqrt", "ctan", "cumipmt", "cumprinc", "curl",
    "date2serial", "debugprint", "debugview", "defmat", "defsym", "delete", "deletecol",
    "deleterow", "deriv", "det", "div", "duplicateitems", "duplicateselect", "eigen", "ellipe",
    "ellipf", "ellipi", "erf", "exec", "exp", "factrl", "fft", "floor", "frame", "ftest", "fv",
    "gammainc", "gammaln", "gauss", "gausspt", "getitemindex", "getop", "getorientation",
    "getrange", "gez", "gotourl", "grad", "hcoc", "hcos", "hermint", "hermit", "hideitems",
    "hidemessage", "hittest", "hsoc", "hsos", "hypot", "imteg", "inform", "insertcol",
    "insertrow", "integ", "intrate", "invert", "ipmt", "irr", "isvar", "jacob", "lcfit", "lfit",
    "lint", "loadbitmap", "log10", "lookup", "ln", "mantissa", "max", "maxz1", "mean", "min",
    "minz1", "minzs", "mod", "moveitems", "moveselect", "movingaverage", "ncol",
    "newdrawdocument", "nfit", "notice", "nper", "npv", "nrow", "odesint", "openfiletoread",
    "openfiletowrite", "plot", "plot3d", "plot3dcurve", "plotanimate", "plotarc", "plotarcarrow",
    "plotarrow", "plotarrowatpoint", "plotarrowrange", "plotaxes", "plotbezier", "plotbox",
    "plotchord", "plotchordarrow", "plotcircle", "plotcontour", "plotellipse", "plothbar",
    "plothistogram", "plotline", "plotlinearscale", "plotlogscale", "plotmesh", "plotpie",
    "plotpiearrow", "plotpiechart", "plotpoly", "plotrectangle", "plotvbar", "plotvectorfield",
    "plotxy", "pmt", "polint", "poly", "poly2bezier", "polycoe", "positionitem", "postmessage",
    "ppmt", "print", "project", "prtmat", "ptor", "putpolar", "putxy", "putxyz", "pv", "rand",
    "randfill", "randnorm", "randnormfill", "ratint", "readglobalvars", "readfile", "removeitems",
    "removeselect", "resizemat", "rewindfile", "RGB", "round", "root1", "roots", "rtop",
    "saveglobalvars", "scaleitem", "select", "serial2date", "series", "setcliprect", "setop",
    "setorientation", "setpictposition", "setrange", "setselectrect", "showitems", "sign",
    "simplx", "sin", "sinh", "sleep", "solve", "sort", "spline", "splint", "sqrt", "stdv",
    "str2val", "studente", "studentp", "studentu", "subop", "summat", "svd", "svsolve", "symsolv",
    "t#", "tan", "tanh", "tofraction", "tmult", "trisolv", "truncate", "unit", "useoption",
    "val2str", "view", "xirr", "xnpv", "writefile", "yesno", "zero", "zeronew", "zoominpoint",
    "zoomnormal", "zoomoutpoint"
};

// The row of a name; a mistyped one does not compile.
consteval int builtinCode(std::string_view name) {
  for (std::size_t i = 0; i < builtinNames.size(); ++i)
    if (builtinNames[i] == name) return static_cast<int>(i);
  throw "no built-in of this name";
}

}  // namespace vexa
