#pragma once

// Every function that has reference values: how it is called, what it may be off, in which unit. A
// unit test holds each row to its bound, and the program vexa_accuracy prints how near it comes.

#include <functional>
#include <string_view>
#include <vector>

#include "support/reference_rows.h"

namespace vexa {

struct AccuracyEntry {
  std::string_view name;  // as a program calls it, and what a file has more than that
  std::string_view file;  // below tests/data
  double allowed;         // errors, in units
  std::string_view unit;
  double (*unitOf)(const ReferenceRow& row);
  std::function<double(const ReferenceRow&)> function;
};

const std::vector<AccuracyEntry>& accuracyTable();

struct WorstError {
  double units = 0;
  ReferenceRow row;
  double result = 0;
  std::size_t rows = 0;  // of the file
};

// A result that is not-a-number counts as infinitely wrong.
WorstError worstError(const AccuracyEntry& entry);

}  // namespace vexa
