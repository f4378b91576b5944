// The policy under which Boost.Math is called: every error is ignored, so that what is undefined is
// not-a-number and what leaves the range infinity or 0. Promotion to long double stays on; it is
// what makes results right to the last place. Heavy: only for the .cpp file behind a plain header.
#pragma once

#include <boost/math/policies/policy.hpp>
#include <exception>
#include <limits>

namespace vexa {

namespace policies = boost::math::policies;

using IgnoreErrors = policies::policy<policies::domain_error<policies::ignore_error>,
                                      policies::pole_error<policies::ignore_error>,
                                      policies::overflow_error<policies::ignore_error>,
                                      policies::underflow_error<policies::ignore_error>,
                                      policies::denorm_error<policies::ignore_error>,
                                      policies::evaluation_error<policies::ignore_error>,
                                      policies::rounding_error<policies::ignore_error>,
                                      policies::indeterminate_result_error<policies::ignore_error>>;

// The value of a call into the library. A few of its functions throw whatever the policy says;
// that counts as not-a-number.
template <class Call>
auto quietly(Call call) -> decltype(call()) {
  try {
    return call();
  } catch (const std::exception&) {
    return std::numeric_limits<decltype(call())>::quiet_NaN();
  }
}

}  // namespace vexa
