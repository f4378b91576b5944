#pragma once

// Expressions that a built-in evaluates again and again: functions of a running variable, and
// functions of the elements of a named row. They are kept by their place in the text and evaluated
// from it each time, so that a fault inside one carries its own line.
//
// A handler of one variable:
//
//   RunningVariable x = RunningVariable::read();  // the name only
//   ... limits, which may still use an outer variable of that name ...
//   x.bind();
//   const RunningExpression f = RunningExpression::here(x);
//   ... f(0.5) ...           // at least once: only that finds the end
//   expectChar(')');
//
// What stands behind the expression and must be known first is read after RunningExpression::read;
// then TextReturn takes the cursor back when the work is done.
//
// No evaluation allocates.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "values/argument_readers.h"

namespace vexa {

// Makes the token current again that was when work that evaluates text began. After a fault the
// cursor stays where the fault is, for the line of the message.
class TextReturn {
 public:
  TextReturn();
  // Call it when the work is done, before anything else is read or raised.
  void go() const;

 private:
  const char* m_token;
};

// A name that a built-in binds as a dummy while it evaluates expressions, free again on every path
// out.
class RunningVariable {
 public:
  // A name: key 36 for something else, 56 for a local, 21 or 18 for a function or built-in.
  static RunningVariable read();
  RunningVariable(RunningVariable&& other) noexcept;
  RunningVariable& operator=(RunningVariable&&) = delete;
  ~RunningVariable();

  // Key 57 when ten are active.
  void bind();
  void set(double value) const;

 private:
  explicit RunningVariable(std::string_view name) : m_name(name) {}

  std::string m_name;
  int m_index = -1;  // of the dummy, once bound
  int m_countBefore = 0;
};

// An expression by its place.
class ExpressionText {
 public:
  // The next argument, which evaluate() passes over for the first time.
  static ExpressionText here();
  // The next argument, evaluated once so that its end is found and its faults are reported.
  static ExpressionText read();
  double evaluate() const;

 private:
  explicit ExpressionText(const char* start) : m_start(start) {}
  const char* m_start;
};

// An expression as a function of a running variable, which is bound.
class RunningExpression {
 public:
  static RunningExpression here(const RunningVariable& variable);
  // Evaluated once at `first`.
  static RunningExpression read(const RunningVariable& variable, double first);
  double operator()(double x) const {
    m_variable->set(x);
    return m_text.evaluate();
  }

 private:
  RunningExpression(const RunningVariable& variable, ExpressionText text)
      : m_variable(&variable), m_text(text) {}
  const RunningVariable* m_variable;
  ExpressionText m_text;
};

// Expressions separated by commas, at least one, up to the closing parenthesis or the first word;
// the delimiter before either stays unread.
std::vector<ExpressionText> readExpressions();

// A named row of numbers into which trial values are written while expressions that mention its
// elements are evaluated. On every path out it has the elements and the order again that it had
// when it was read, whatever user text has done to it, or the result that keep() stored.
class TrialRow {
 public:
  // A matrix by its name: key 59 otherwise, for an expression too.
  static TrialRow read();
  TrialRow(TrialRow&& other) noexcept = default;
  TrialRow& operator=(TrialRow&&) = delete;
  ~TrialRow();

  // Key 64 unless it was a single row when it was read; false then.
  bool requireRow() const;
  int size() const { return static_cast<int>(m_old.size()); }
  // The elements that it had when it was read.
  std::span<const double> start() const { return m_old; }
  Matrix* matrix() const { return m_argument.get(); }
  const std::string& name() const { return m_name; }

  // Whether user text has left the row its order.
  bool intact() const;
  // Key 64 when it has not.
  void check() const;
  void write(std::span<const double> values);
  // Stores the result.
  void keep(std::span<const double> values);

 private:
  TrialRow(MatrixArgument argument, std::string_view name);

  MatrixArgument m_argument;
  std::string m_name;
  std::vector<double> m_old;
  int m_rows, m_cols;
  bool m_kept = false;
};

// How a user function that stands in place of expressions is called: f(v) is worth the value, or
// f(v, r) fills the row r with as many values as v has.
enum class FunctionForm { single, several };

// Functions of the elements of a row and, where there is one, of a running variable before it:
// expressions, or the bare name of a user function f(v), f(v, r), f(t, v), f(t, v, r).
class RowFunctions {
 public:
  // Reads as readExpressions does; a single expression with FunctionForm::single. Key 64, before
  // any of them is evaluated, when the row is none.
  static RowFunctions read(FunctionForm form, TrialRow& row,
                           const RunningVariable* variable = nullptr);

  // How many values there are; for a function those of the row.
  int count() const;
  // Writes the row (and the running variable) and evaluates all.
  void evaluate(std::span<const double> at, std::span<double> values) { evaluate(0, at, values); }
  void evaluate(double t, std::span<const double> at, std::span<double> values);
  // The same for one of them, counted from 0.
  double value(int which, std::span<const double> at) { return value(which, 0, at); }
  double value(int which, double t, std::span<const double> at);
  // Gives the temporary row back that a function fills. Not called after a fault: the list of
  // frames still shows it.
  void finish();

 private:
  RowFunctions(FunctionForm form, TrialRow& row, const RunningVariable* variable)
      : m_form(form), m_row(&row), m_variable(variable) {}
  void place(double t, std::span<const double> at);
  double call(double t);

  FunctionForm m_form;
  TrialRow* m_row;
  const RunningVariable* m_variable;
  std::vector<ExpressionText> m_expressions;
  Symbol* m_function = nullptr;  // in place of expressions
  const char* m_callSite = nullptr;
  Matrix* m_filled = nullptr;  // the r of f(v, r)
};

}  // namespace vexa
