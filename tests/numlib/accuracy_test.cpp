// Every entry of the accuracy table keeps to its bound.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <ostream>
#include <string>

#include "support/accuracy_table.h"

namespace vexa {

// For the names of the tests in reports.
static void PrintTo(const AccuracyEntry& entry, std::ostream* out) { *out << entry.name; }

namespace {

class AccuracyTest : public ::testing::TestWithParam<AccuracyEntry> {};

TEST_P(AccuracyTest, ErrorsStayWithinTheBound) {
  const WorstError worst = worstError(GetParam());
  EXPECT_GE(worst.rows, 20u);
  EXPECT_LE(worst.units, GetParam().allowed) << GetParam().name << " of " << worst.row.text << ' '
                                             << testing::PrintToString(worst.row.arguments)
                                             << " gives " << testing::PrintToString(worst.result);
}

INSTANTIATE_TEST_SUITE_P(Functions, AccuracyTest, ::testing::ValuesIn(accuracyTable()),
                         [](const auto& entry) {
                           std::string name(entry.param.name);
                           std::replace_if(
                               name.begin(), name.end(), [](char c) { return !std::isalnum(c); },
                               '_');
                           return name;
                         });

}  // namespace
}  // namespace vexa
