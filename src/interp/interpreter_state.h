#pragma once

// The one record of a run. There is one per process, reached through interpreter(); a front makes
// it at start-up, a test fixture installs a fresh one.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "graphics/plot/plot_state.h"
#include "interp/call_stack.h"
#include "interp/errors.h"
#include "interp/name_pool.h"
#include "interp/output.h"
#include "interp/shell.h"
#include "values/scanner.h"
#include "values/temporaries.h"

namespace vexa {

inline constexpr int nestingLimit = 1000;
inline constexpr int errorListLimit = 40;
inline constexpr int loopBudgetAtStart = 32000;

// A row of the error and call list.
struct ListRow {
  std::string message;
  int line = -1;
  std::int16_t depth = 0;
  bool isCall = false;
};

enum class RunOutcome { none, normal, ended, fault, interrupted };

// The angle mode of useoption. The two degree factors are these exact bit patterns.
struct AngleMode {
  bool radians = true;
  double radiansToUser = 1.0;
  double userToRadians = 1.0;
};

struct InterpreterState {
  explicit InterpreterState(Shell& front);
  InterpreterState(const InterpreterState&) = delete;
  InterpreterState& operator=(const InterpreterState&) = delete;
  ~InterpreterState();

  Shell* shell;

  // Program text and documents.
  std::shared_ptr<const std::string> programText;  // prepared, with textPadding NULs behind it
  TextDocument* programDocument = nullptr;
  TextDocument* outputDocument = nullptr;
  TextDocument* defaultOutputDocument = nullptr;
  bool outputChosen = false;  // outputDocument has the role of one that receives output

  // Flags.
  bool busy = false;
  bool running = false;
  bool evaluating = false;  // calculator evaluation
  bool updatingDeclarations = false;
  bool functionsCurrent = false;
  bool functionSeen = false;  // function count flag
  bool trace = false;
  bool displayValues = false;
  bool initialising = false;       // the initial value of a local is being read
  bool blockInExpression = false;  // the statements of an `exec` block or a calculator
  char returnPending = 0;
  bool endReached = false;  // the keyword `end` stopped the run
  bool runInterrupted = false;
  unsigned faultCount = 0;  // faults raised so far, for who must know of a new one
  unsigned faultsBeforeUpdate = 0;
  RunOutcome outcome = RunOutcome::none;

  // The scanner and what it reads names with.
  Scanner scanner;
  NamePool names;
  CallStack calls;
  // What the last failed run left, for the data views, and the text that its frames point into.
  CallStack faultCalls;
  std::shared_ptr<const std::string> faultText;
  char mode = 0;  // '!' matrix, '@' complex, 0 plain
  int nesting = 0;

  // The functions executing now.
  Symbol* currentFunction = nullptr;
  Symbol* callerFunction = nullptr;
  std::string_view contextText;

  // Faults.
  int errorLine = -1;
  std::string lastErrorMessage;
  std::string faultContext;
  std::vector<ListRow> errorList;

  // Tracing and budgets.
  int traceIndent = 0;
  int loopBudget = loopBudgetAtStart;

  // Values.
  TemporarySlots<Matrix> tempMatrices;
  TemporarySlots<WorkVector> tempVectors;
  double returnValue = 0;
  Matrix* returnMatrix = nullptr;
  Matrix* currentMatrix = nullptr;  // the result of the last `!` or `@` expression

  // Built-ins.
  int currentBuiltin = -1;
  Matrix* builtinResultMatrix = nullptr;
  Symbol* builtinResultOwner = nullptr;
  bool noEcho = false;
  std::uint8_t pivotSerial = 0;  // of the newest pivot companion, see docs/builtins/linear.md
  char builtinMode = 0;          // the mode mark at the call of the current built-in
  AngleMode angles;
  bool debug = false;
  int matrixPrintLimit = 0;
  std::int32_t displaySetting = 0;
  double runStartTime = 0;
  TextSink* sink = nullptr;  // where printed text goes instead of the output document

  // Drawing. Outlives runs.
  PlotState plot;

  // Data displays.
  std::array<std::uint64_t, 6> generations{};
  void changed(Bar bar) { ++generations[static_cast<std::size_t>(bar)]; }
};

namespace detail {
extern InterpreterState* current;
}

inline InterpreterState& interpreter() { return *detail::current; }
inline Shell& shell() { return *detail::current->shell; }

// Installs a state for the lifetime of the scope; scopes nest (tests).
class InterpreterScope {
 public:
  explicit InterpreterScope(Shell& front);
  ~InterpreterScope();
  InterpreterScope(const InterpreterScope&) = delete;
  InterpreterScope& operator=(const InterpreterScope&) = delete;
  InterpreterState& state() { return *m_state; }

 private:
  InterpreterState* m_previous;
  std::unique_ptr<InterpreterState> m_state;
};

}  // namespace vexa
