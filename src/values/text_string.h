#pragma once

// Text in matrix variables: seven characters an element, in order, and the mark 'S' as its eighth
// byte; places left over are blanks, so trailing blanks are not told from the padding.

#include <string>
#include <string_view>

#include "values/matrix.h"

namespace vexa {

inline constexpr std::size_t charactersPerElement = 7;
inline constexpr std::size_t stringLimit = 254;  // longer texts raise key 25

// Makes `matrix` the string `text`: 1 x ceil(length / 7), at least 1 x 1. Raises key 25 for a text
// that is too long.
void storeText(Matrix& matrix, std::string_view text);
// The characters without trailing blanks.
std::string loadText(const Matrix& matrix);

// The text entered under a name by the rules of a string result: key 51 for a global float, 20 for
// a local one, 21 or 18 for a function or built-in. An unknown name becomes a global.
void assignText(std::string_view name, std::string_view text);

// What may follow the `=` of a string: a literal, a string variable with or without `%`, or `?` for
// a text entry that names the variable. Reads its first token; the token after it is current then.
std::string readAssignedText(const std::string& name);

// `%` name = "literal" | string | %string | ?, after the `%`, which is the current token. Leaves
// the token after the value current.
void evalStringAssignment();

}  // namespace vexa
