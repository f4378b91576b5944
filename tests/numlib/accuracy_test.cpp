// Every entry of the accuracy table keeps to its bound.
#include <gtest/gtest.h>

#include "support/accuracy_table.h"

namespace vexa {
namespace {

class AccuracyTest : public ::testing::TestWithParam<AccuracyEntry> {};

TEST_P(AccuracyTest, ErrorsStayWithinTheBound) {
  const WorstError worst = worstError(GetParam());
  EXPECT_GE(worst.rows, 20u);
  EXPECT_LE(worst.units, GetParam().allowed)
      << GetParam().name << " of " << testing::PrintToString(worst.row.arguments) << " gives "
      << testing::PrintToString(worst.result);
}

INSTANTIATE_TEST_SUITE_P(Functions, AccuracyTest, ::testing::ValuesIn(accuracyTable()),
                         [](const auto& entry) {
                           std::string name(entry.param.file);
                           name = name.substr(name.rfind('/') + 1);
                           return name.substr(0, name.find('.'));
                         });

}  // namespace
}  // namespace vexa
