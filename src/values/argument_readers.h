#pragma once

// The readers with which handlers and statements take their arguments, so that every built-in
// accepts the same forms and fails with the same errors. Each begins at the next token and leaves
// the cursor on the delimiter that follows, for the next expectChar.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "values/builtins.h"
#include "values/evaluator.h"

namespace vexa {

// Takes the next token and requires its character; raises by the character expected: a double
// quote key 26, parentheses 30, `,` 33, `:` 15, `;` 29, square brackets 32, braces 31, else 34.
// Accepts anything during a program update.
void expectChar(char c);
// The same for a character that should be the current token.
inline void expectCurrent(const Scanner& scanner, char c) {
  if (scanner.tokenChar == static_cast<unsigned char>(c)) [[likely]]
    return;
  rescanToken();
  expectChar(c);
}
// Raises the error that belongs to an expected character.
void raiseExpected(char c);
// True, and the token consumed, when the next token is the delimiter c; otherwise the cursor stays.
bool acceptChar(char c);
// After an item of a list: true for `,`, false for `)`, both consumed; otherwise `fault`.
bool moreArguments(ErrorKey fault = ErrorKey::parenthesisExpected);
// "(" and ")" of a call without arguments.
void expectNoArguments();

// A number. No token: key 16; an empty argument before `;` is 0; then a delimiter of "),;}]:{" is
// due (key 34) and put back.
double evalScalarArg();

// A matrix that an argument names or makes. A temporary is freed when the argument goes out of
// scope; a variable's matrix is pinned meanwhile.
class MatrixArgument {
 public:
  MatrixArgument() = default;
  MatrixArgument(MatrixArgument&& other) noexcept;
  MatrixArgument& operator=(MatrixArgument&& other) noexcept;
  ~MatrixArgument() { reset(); }

  Matrix& operator*() const { return *m_matrix; }
  Matrix* operator->() const { return m_matrix; }
  Matrix* get() const { return m_matrix; }
  bool temporary() const { return m_temporary; }
  void reset();

  static MatrixArgument variable(Matrix* matrix);
  static MatrixArgument owned(Matrix* temporaryMatrix);

 private:
  Matrix* m_matrix = nullptr;
  bool m_temporary = false;
};

// A matrix name, with or without `!` or `@`: the variable itself; `!` and more than a name: a
// temporary. Otherwise, and for a string unless `allowString`, key 59.
MatrixArgument readMatrix(bool allowString = false);
// A complex value: an `@` expression, the mark left out directly inside `@`; a number counts as
// its real part. Otherwise key 46.
struct ComplexArgument {
  double re = 0, im = 0;
};
ComplexArgument readComplex();

// M, M(i) or M{j}; a token `||` ("or") before it asks for absolute values. Otherwise key 34; index
// key 37.
struct MatrixReference {
  MatrixArgument matrix;
  enum class Part { whole, row, column } part = Part::whole;
  int index = 0;
  bool absolute = false;
};
MatrixReference readMatrixReference();

// A bare name, read but not yet resolved; its kind is the scanner's. Not a name: `fault`.
struct NameArgument {
  std::string text;
  NameKind kind = NameKind::unknown;
};
NameArgument readName(ErrorKey fault = ErrorKey::variableNameExpected);

// The matrix of a result name: a local's when it is one, otherwise a global's, created 1 x 1 and
// zero when unknown. Key 51 or 20 for a global or local float, 21 or 18 for a function or built-in.
Matrix& resultMatrix(std::string_view name);
// The matrix that a name stands for, or null; never raises.
Matrix* findMatrix(std::string_view name);

// A result name: with or without `!`; not a name: key 61.
std::string readResultName();
// A sized name: a result name, or name[r] (1 x r), name[r,c]. Without brackets `sized` is false. A
// negative order raises key 91, zero key 28. The last token of the form stays current, so that a
// message can cite it.
struct SizedName {
  std::string name;
  const char* position = nullptr;  // of the name in the text, for messages
  bool sized = false;
  bool twoOrders = false;
  int rows = 0, cols = 0;
};
SizedName readSizedName();
// Creates or redefines the matrix of a sized name.
Matrix& makeSized(const SizedName& name);

// A float variable, local or global; unknown: a new global. A matrix: key 69.
class ScalarTarget {
 public:
  explicit ScalarTarget(std::string name) : m_name(std::move(name)) {}
  // Resolves the name anew and stores, whole-number variables truncating.
  void store(double x) const;
  const std::string& name() const { return m_name; }

 private:
  std::string m_name;
};
ScalarTarget readScalarName();
// Stores into a float by name with the rules of ScalarTarget; returns the stored value.
double storeScalar(std::string_view name, double x);
// Truncates toward zero when `whole`; not-a-number and infinities stay.
double wholeNumber(double x, bool whole);

// One letter as a bare word, either case, given back upper case; a longer token key 34, a letter
// outside `allowed` the key `unknown`.
char readOption(std::string_view allowed, ErrorKey unknown = ErrorKey::invalidData);

// A literal, a string variable, or `%` and a string variable; otherwise key 94.
std::string readText();
// A double-quoted literal only; otherwise key 94.
std::string readLiteral();
// The items of `print`, collected into a text, up to but not including the closing parenthesis. A
// text of more than textListLimit bytes raises key 25.
inline constexpr std::size_t textListLimit = 1 << 20;
std::string readTextList();

// Numbers, matrix names and `!` expressions up to the closing parenthesis, which stays unread;
// elements in storage order, row by row.
std::vector<double> readDataList();
// The same with bounds: one number more than `most` raises key 25 where it is read, a list that
// ends with fewer than `least` key 68. The list may be empty when `least` is 0.
std::vector<double> readDataList(std::size_t least, std::size_t most);
// One item of a data list, appended.
void readDataItem(std::vector<double>& values);

}  // namespace vexa
