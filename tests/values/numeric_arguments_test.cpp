// The readers of the numerical families: what they accept, and what a change of a variable between
// reading and use does.

#include "values/numeric_arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "interp/program_text.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

using ::testing::ElementsAre;

class NumericArgumentsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    session.run(
        "mat m[2,3]; float x = 5; string s = \"text\"; "
        "main() { !m = {1,-2,3;4,5,-6}; !v = {7,8,9}; }");
    state().evaluating = true;
  }
  void TearDown() override { state().evaluating = false; }

  InterpreterState& state() { return session.scope.state(); }
  void place(std::string_view text) {
    m_texts.push_back(prepareTypedText(text));
    state().scanner.progCursor = m_texts.back()->data();
  }
  // The number of the message that a reader raises for a text.
  template <class Reader>
  std::string faultOf(std::string_view text, Reader reader) {
    place(text);
    try {
      reader();
      return "none";
    } catch (const RunAbandoned&) {
      const std::string& message = state().lastErrorMessage;
      return message.substr(8, message.find_first_of(":.*") - 8);
    }
  }
  DataArgument data(std::string_view text) {
    place(text);
    return readData();
  }
  std::vector<double> numbers(std::string_view text) {
    DataArgument read = data(text);
    const auto elements = read.elements();
    return {elements.begin(), elements.end()};
  }

  ScriptedSession session;

 private:
  // All of them: the last token of one is still current when the next has its place.
  std::vector<std::shared_ptr<const std::string>> m_texts;
};

TEST_F(NumericArgumentsTest, DataAreTakenInStorageOrder) {
  EXPECT_THAT(numbers("m)"), ElementsAre(1, -2, 3, 4, 5, -6));
  EXPECT_THAT(numbers("m(2))"), ElementsAre(4, 5, -6));
  EXPECT_THAT(numbers("m{3})"), ElementsAre(3, -6));
  EXPECT_THAT(numbers("||m{2},"), ElementsAre(2, 5));
  EXPECT_THAT(numbers("||m(2),"), ElementsAre(4, 5, 6));
  EXPECT_THAT(numbers("!v + v)"), ElementsAre(14, 16, 18));
  EXPECT_EQ(data("!m)").matrix(), findMatrix("m"));
  EXPECT_EQ(data("m{1})").rows(), 2);
  EXPECT_EQ(data("m{1})").cols(), 1);
  EXPECT_EQ(state().tempMatrices.inUse(), 0);
  for (const char* text : {"x)", "s)", "3)", "m[1])", "\"m\")"})
    EXPECT_EQ(faultOf(text, readData), "19") << text;
  EXPECT_EQ(faultOf("!s)", readData), "24");
}

TEST_F(NumericArgumentsTest, AMatrixThatShrinksTakesItsRowsAndColumnsAlong) {
  DataArgument row = data("m(2))"), column = data("m{3})"), whole = data("m)");
  ASSERT_TRUE(findMatrix("m")->reshape(1, 2));
  EXPECT_EQ(faultOf("", [&] { row.elements(); }), "23");
  EXPECT_EQ(faultOf("", [&] { column.elements(); }), "23");
  EXPECT_EQ(whole.elements().size(), 2u);
}

TEST_F(NumericArgumentsTest, VectorsHaveOneRowOrColumnAndOneLength) {
  const DataArgument m = data("m)"), row = data("m(1))"), column = data("m{1})"), v = data("v)");
  EXPECT_TRUE(requireVectors({&row, &v}));
  EXPECT_TRUE(requireVectors({&column}));
  EXPECT_EQ(faultOf("", [&] { requireVectors({&v, &column}); }), "25");
  EXPECT_EQ(faultOf("", [&] { requireVectors({&m}); }), "25");
}

TEST_F(NumericArgumentsTest, WholeNumbersAreCheckedBeforeTheyAreConverted) {
  EXPECT_EQ(requireWhole(3.9, 0, 9), 3);
  EXPECT_EQ(requireWhole(-0.9, 0, 9), 0);
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const double x : {-1.0, 10.0, 1e300, infinity, -infinity, infinity - infinity})
    EXPECT_EQ(faultOf("", [x] { requireWhole(x, 0, 9); }), "19") << x;
}

TEST_F(NumericArgumentsTest, WordsComeInAnyOrderAndCase) {
  const auto read = [this](std::string_view text) {
    place(text);
    std::string seen;
    for (WordReader words({"same", "cov=", "weights="}); words.next();) {
      seen += std::to_string(words.index());
      if (words.index() == 0) continue;
      expectChar(',');
      seen += readResultName();
    }
    return seen;
  };
  EXPECT_EQ(read(")"), "");
  EXPECT_EQ(read(", \"Weights=\", w, \"SAME\", \"cov=\", c)"), "2w01c");
  EXPECT_EQ(faultOf(", \"other\")", [&] { WordReader({"same"}).next(); }), "49");
  EXPECT_EQ(faultOf(", \"cov\")", [&] { WordReader({"cov="}).next(); }), "49");
  EXPECT_EQ(faultOf(", 3)", [&] { WordReader({"same"}).next(); }), "62");
  EXPECT_EQ(faultOf(" 3)", [&] { WordReader({"same"}).next(); }), "40");
  EXPECT_EQ(faultOf("", [&] { read(", \"same\", \"Same\")"); }), "19");

  place(", 3, \"same\")");
  EXPECT_TRUE(moreBeforeWords());
  EXPECT_EQ(evalScalarArg(), 3);
  EXPECT_FALSE(moreBeforeWords());
  EXPECT_TRUE(WordReader({"same"}).next());
  EXPECT_FALSE(moreBeforeWords());
}

TEST_F(NumericArgumentsTest, OneVariableIsNotTwoResults) {
  const Matrix* m = findMatrix("m");
  EXPECT_TRUE(requireDistinct({"a", "", "v", ""}, {m, nullptr}));
  EXPECT_EQ(faultOf("", [&] { requireDistinct({"a", "b", "a"}); }), "30");
  EXPECT_EQ(faultOf("", [&] { requireDistinct({"a", "m"}, {m}); }), "30");
}

TEST_F(NumericArgumentsTest, SettingsAreHeldWithinTheirBounds) {
  const auto setting = [this](const char* name, double x) {
    state().names.find(name)->value = x;
    return std::pair(accuracyAimed(), iterationBound());
  };
  EXPECT_EQ(setting("iter#", 100).second, 100);
  EXPECT_EQ(setting("iter#", -3).second, 1);
  EXPECT_EQ(setting("iter#", std::numeric_limits<double>::quiet_NaN()).second, 1);
  EXPECT_GT(setting("iter#", 1e300).second, 1000000);
  EXPECT_DOUBLE_EQ(setting("tol#", 1e-4).first, 1e-10);
  EXPECT_EQ(setting("tol#", -1).first, 1e-14);
  EXPECT_EQ(setting("tol#", 1e9).first, 1e-2);
}

}  // namespace
}  // namespace vexa
