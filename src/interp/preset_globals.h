#pragma once

// The global floats that every run starts with: constants, settings and the results that
// statistics leave. Programs may assign to them; the next run restores these values.

#include <array>
#include <string_view>

namespace vexa {

struct PresetGlobal {
  std::string_view name;
  double value;
};

inline constexpr std::array<PresetGlobal, 33> presetGlobals = {{
    {"pi#", 3.141592653589793},
    {"e#", 2.718281828459045},
    {"Euler#", 0.5772156649015329},
    {"iter#", 100},
    {"tol#", 0.0001},
    {"i#", 1e+30},
    {"row#", 0},
    {"col#", 0},
    {"version#", 6.5},
    {"mean#", 0},
    {"adev#", 0},
    {"stdv#", 0},
    {"skew#", 0},
    {"var#", 0},
    {"kurt#", 0},
    {"max#", 0},
    {"min#", 0},
    {"count#", 0},
    {"atomicMass#", 1.66053873e-27},
    {"Avogadro#", 6.02214199e+23},
    {"Boltzmann#", 1.3806503e-23},
    {"eMass#", 9.10938188e-31},
    {"eV#", 1.602176462e-19},
    {"eCharge#", 1.602176462e-19},
    {"Faraday#", 96485.3415},
    {"magnetic#", 1.2566370614e-06},
    {"R#", 8.314472},
    {"G#", 6.673e-11},
    {"Planck#", 6.62606876e-34},
    {"protonMass#", 1.67262158e-27},
    {"Rydberg#", 10973731.568549},
    {"c#", 299792458},
    {"StefanB#", 5.6704e-08},
}};

}  // namespace vexa
