#pragma once

// The reserved words. A word's index is its token class; index 0 heads the editor's word pool and
// is no keyword (its blank keeps any program from spelling it).

#include <array>
#include <string_view>

namespace vexa {

inline constexpr std::array<std::string_view, 18> keywords = {
    "Reserved words", "float", "int",      "mat",     "string", "break",
    "case",           "char",  "continue", "default", "do",     "else",
    "end",            "for",   "if",       "return",  "switch", "while"};

}  // namespace vexa
