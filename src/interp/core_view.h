#pragma once

// What a front may read of the core (CoreView, safe at any moment) and what it may command when no
// run is on (CoreCommands).

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "interp/interpreter_state.h"

namespace vexa {

struct FrameRow {
  std::string function;
  int line = -1;
  int depth = 0;
  std::string arguments;  // "f(2, [3x3])" while values are displayed
};

struct VariableRow {
  enum class Kind { scalar, wholeNumber, matrix, string } kind = Kind::scalar;
  std::string name;
  double value = 0;
  int rows = 0, cols = 0;
  std::string text;  // of a string
  bool preset = false;
};

struct FunctionRow {
  std::string name, signature;
  int line = 0;
  char state = 0;
};

struct BuiltinRow {
  std::string_view name, group, signature, text;
};

// One value that an evaluated line shows.
struct ShownValue {
  enum class Kind { scalar, matrix, text } kind = Kind::scalar;
  double scalar = 0;
  const Matrix* matrix = nullptr;  // valid during the call only
  std::string text;
};

struct Evaluation {
  bool fault = false;
  bool interrupted = false;
  std::string message;  // of the fault
  double value = 0;     // of the last expression
  // Called for each expression that has something to show, in order.
  std::function<void(const ShownValue&)> show;
};

// Writes a shown value as a printed scalar, matrix or text: whole lines.
void writeShownValue(const ShownValue& value, TextSink& sink);

class CoreView {
 public:
  bool running() const;
  RunOutcome lastOutcome() const;
  std::vector<FrameRow> frames() const;              // innermost first
  std::vector<VariableRow> locals(int depth) const;  // newest first
  std::vector<VariableRow> globals() const;          // in the order of their making, presets last
  // What a name stands for: as the running function sees it or, after a fault, the failed one did.
  std::optional<VariableRow> variable(std::string_view name) const;
  std::span<const ListRow> errorRows() const;  // faults and calls, at most 40
  std::vector<FunctionRow> userFunctions() const;
  std::vector<BuiltinRow> builtins() const;
  const Matrix* matrix(std::string_view name) const;  // looked up as variable() does
  std::uint64_t generation(Bar bar) const;
  int errorLine() const;
  const std::string& lastErrorMessage() const;
};

class CoreCommands {
 public:
  // The Execute command. False when a run is on, the document was refused or its text could not
  // be taken; true when the run was started, whatever its end (CoreView::lastOutcome).
  bool execute(TextDocument& program);
  // The program update: registers the functions of the program document anew.
  bool updateFunctions();
  // Tells the core that a program's text has changed.
  void textChanged(const TextDocument& document);
  // Makes a document the program document without running it, so that updateFunctions reads it.
  // False when a run is on or, after a message, when the text could not be taken.
  bool setProgram(TextDocument& document);
  // As the calculator does; false when a run is on. The keyword `end` is no fault.
  bool evaluate(std::string_view text, Evaluation& result);
  // Only while the core waits in Shell::calculator or Shell::form.
  bool evaluateInRun(std::string_view text, Evaluation& result);
  bool defineMatrix(std::string_view name, int rows, int cols);
  bool writeBlock(std::string_view name, int row, int col, int cols,
                  std::span<const double> values);
  // Where printed text goes: mode 1 the active document, mode 2 whatever can be had. False when a
  // run is on or, after a message, when no text document is active.
  bool chooseOutput(int mode);
  // The global-variables file, asked for by a dialog; faults are shown as those of the calculator.
  // False when a run is on, after a fault and, of saveGlobals, when nothing was saved.
  bool saveGlobals();
  bool readGlobals();
  void setTrace(bool on);
  void setDisplayValues(bool on);
  // Drops references to a document that a front is about to destroy; allowed during a run.
  void documentClosed(const void* document);
};

}  // namespace vexa
