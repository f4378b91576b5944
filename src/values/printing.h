#pragma once

// How numbers and matrices are written, and the language of what `print` and text lists write.

#include "interp/output.h"
#include "values/matrix.h"

namespace vexa {

// " %11g" of a number.
void printNumber(TextSink& sink, double x);
// A whole matrix: one line a row, every element by " %11g"; a string as its text.
void printMatrix(TextSink& sink, const Matrix& matrix);
// After an expression statement with `!` or `@`: writes the matrix while the print limit lasts.
void printAutomatically(const Matrix& matrix);

// How the items of a call write whole matrices.
struct PrintStyle {
  bool alternate = false;      // rows and columns are numbered
  bool complexValues = false;  // the columns of a row are taken in pairs
};

// Reads the items of `print` from the next token on and writes each as soon as it is read, into
// `sink` or, when that is null, the output document. The closing parenthesis is the current token
// on return.
void printItems(TextSink* sink, PrintStyle style = {});

}  // namespace vexa
