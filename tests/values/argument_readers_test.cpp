// Readers apart from the built-ins that use them: forms that few of them take, and what is left to
// a caller when a fault does not unwind.

#include "values/argument_readers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interp/program_text.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

using Part = MatrixReference::Part;

// A text under the scanner. Faults unwind while an evaluation is active.
class ReaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    session.run("mat m[2,3]; float x = 5; int n; string s = \"text\"; main() { !p = {3,4}; }");
    state().evaluating = true;
  }
  void TearDown() override { state().evaluating = false; }

  InterpreterState& state() { return session.scope.state(); }
  void place(std::string_view text) {
    m_text = prepareTypedText(text);
    state().scanner.progCursor = m_text->data();
  }
  // The key of the fault that a reader raises for a text.
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

  ScriptedSession session;

 private:
  std::shared_ptr<const std::string> m_text;
};

TEST_F(ReaderTest, TakesReferencesToWholeMatricesRowsAndColumns) {
  const auto read = [this](std::string_view text) {
    place(text);
    MatrixReference reference = readMatrixReference();
    EXPECT_EQ(reference.matrix.get(), findMatrix("m")) << text;
    return reference;
  };
  EXPECT_EQ(read("m").part, Part::whole);
  EXPECT_EQ(read("m < 3").part, Part::whole);
  const MatrixReference row = read("m(1+1)");
  EXPECT_EQ(row.part, Part::row);
  EXPECT_EQ(row.index, 2);
  EXPECT_FALSE(row.absolute);
  const MatrixReference column = read("|| m{3}");
  EXPECT_EQ(column.part, Part::column);
  EXPECT_EQ(column.index, 3);
  EXPECT_TRUE(column.absolute);

  for (const char* text : {"m[1]", "x", "s", "unknown", "3", "m(1", "| m"})
    EXPECT_EQ(faultOf(text, readMatrixReference), "19") << text;
  for (const char* text : {"m(3)", "m(0)", "m{4}", "m{-1}", "m(1e999)"})
    EXPECT_EQ(faultOf(text, readMatrixReference), "23") << text;
}

TEST_F(ReaderTest, TakesComplexValuesWithTheirMarkOrInsideAComplexExpression) {
  const auto read = [this](std::string_view text) {
    place(text);
    const ComplexArgument z = readComplex();
    return std::pair(z.re, z.im);
  };
  using Pair = std::pair<double, double>;
  EXPECT_EQ(read("@p"), Pair(3, 4));
  EXPECT_EQ(read("@p * {0,1}"), Pair(-4, 3));
  EXPECT_EQ(read("@x + 1"), Pair(6, 0));
  EXPECT_EQ(faultOf("p", readComplex), "7");
  EXPECT_EQ(faultOf("@m", readComplex), "7");
  state().builtinMode = '@';
  EXPECT_EQ(read("p~"), Pair(3, -4));
  EXPECT_EQ(read("x"), Pair(5, 0));
  EXPECT_EQ(state().tempMatrices.inUse(), 0);
}

TEST_F(ReaderTest, KeepsTheMatrixOfAnArgumentFromBeingDeleted) {
  place("m");
  state().evaluating = false;
  MatrixArgument argument = readMatrix();
  MatrixArgument moved = std::move(argument);
  EXPECT_EQ(session.evaluate("delete(m)"),
            " Error #48: Sorry! Can't delete variable currently in use elsewhere:  \" m \" on line "
            "CALC");
  moved.reset();
  EXPECT_EQ(session.evaluate("delete(m); isvar(m)"), "           0\n");
}

// The bound of all matrices holds while a list grows, with room for what is made from it.
TEST_F(ReaderTest, RefusesListsThatOutgrowTheMemory) {
  constexpr std::uint64_t roomFor = 40;
  const auto list = [] { return readDataList(); };
  setMatrixMemoryLimit(matrixMemoryInUse() + roomFor * sizeof(double));
  place("m, m, m)");
  EXPECT_EQ(readDataList().size(), 18u);
  EXPECT_EQ(faultOf("m, m, m, m)", list), "20");
  EXPECT_EQ(faultOf("!m, 1, !m, !m, 2, m)", list), "20");
  setMatrixMemoryLimit(std::uint64_t{1} << 40);
}

TEST_F(ReaderTest, StoresNumbersByTheKindOfTheirVariable) {
  EXPECT_EQ(storeScalar("n", -2.7), -2);
  EXPECT_EQ(storeScalar("x", -2.7), -2.7);
  EXPECT_EQ(storeScalar("fresh", 1.5), 1.5);
  EXPECT_EQ(faultOf("", [] { storeScalar("m", 1); }), "29");
  EXPECT_EQ(faultOf("", [] { storeScalar("main", 1); }), "35");
  state().evaluating = false;
  EXPECT_EQ(session.evaluate("n + x + fresh"), "        -3.2\n");
}

// Outside of an evaluation a fault returns to the reader, and the caller goes on.
TEST_F(ReaderTest, GivesNeutralValuesWhereFaultsDoNotUnwind) {
  state().evaluating = false;
  for (const char* text : {"", ")", "3", "sin", "x", "\"literal\"", "m[9", "@", "||"}) {
    place(text);
    EXPECT_GE(readMatrix()->size(), 1u) << text;
    place(text);
    EXPECT_GE(readMatrixReference().matrix->size(), 1u) << text;
    place(text);
    readComplex();
    place(text);
    evalScalarArg();
    place(text);
    EXPECT_FALSE(readSizedName().name == "x" && findMatrix("x")) << text;
    place(text);
    readText();
    place(text);
    readTextList();
    place(text);
    EXPECT_EQ(readOption("ABC"), '\0') << text;
  }
  EXPECT_THAT(session.messages(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace vexa
