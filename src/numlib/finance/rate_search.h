// A rate at which a sum of discounted amounts is zero.
#pragma once

#include <functional>
#include <optional>

namespace vexa {

// The worth of something at the rate r as a function of u = ln(1 + r); only its sign and its zeros
// count, so it may be scaled by any positive factor that is continuous in u.
using WorthAtRate = std::function<long double(long double u)>;

// The search goes outward from ln(1 + guess) in steps of 0.02, the lower side first, up to 10 to
// each side; the first change of sign is refined by the method of Alefeld, Potra and Shi (ACM
// Transactions on Mathematical Software 21, 1995, algorithm 748). So of several rates the one
// nearest to the guess is found, and of two within one step, or a double one, none. guess > -1.
std::optional<double> searchRate(const WorthAtRate& worth, double guess);

}  // namespace vexa
