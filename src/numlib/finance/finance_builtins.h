#pragma once

// Dates and money.

namespace vexa {

// date2serial(y, m, d [, h [, mi [, s]]]) and date2serial(text) give a serial number;
// serial2date(n) a row of seven, serial2date(n, s ["eu" or "us"]) stores a text.
double dateBuiltin();

// The annuities pv, fv, pmt, nper, intrate, ipmt, ppmt, cumipmt, cumprinc and the cash flows npv,
// irr, xnpv, xirr, each worth its number.
double moneyBuiltin();

}  // namespace vexa
