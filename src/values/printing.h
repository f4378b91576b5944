#pragma once

// How numbers and matrices are written.

#include <string_view>

#include "interp/output.h"
#include "values/matrix.h"

namespace vexa {

// " %11g" of a number.
void printNumber(TextSink& sink, double x);
// A whole matrix: one line a row, every element by " %11g"; a string as its text.
void printMatrix(TextSink& sink, const Matrix& matrix);
// After an expression statement with `!` or `@`: writes the matrix while the print limit lasts.
void printAutomatically(const Matrix& matrix);

}  // namespace vexa
