#include "cli/repl_command.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "cli/eval_command.h"
#include "cli/interrupt.h"
#include "cli/line_editor.h"
#include "cli/program_file.h"
#include "cli/run_command.h"
#include "interp/output.h"
#include "values/builtin_help.h"

namespace vexa {

namespace {

constexpr std::string_view banner =
    "Vexa " VEXA_VERSION ". help lists what there is, Ctrl-D leaves.\n";
constexpr std::string_view firstPrompt = "vexa> ";
constexpr std::string_view nextPrompt = "  ... ";

constexpr std::string_view replWords =
    R"(An expression is evaluated and shown; it goes on in the next line while a bracket is open.
  !m = {1,2;3,4}     a matrix expression begins with !, a complex one with @
  load FILE          makes the functions of a program callable
  run FILE           executes a program; its globals and functions stay
  help NAME          about a built-in, a statement, a group or a function of the program
  quit, exit         leaves, as Ctrl-D does; Ctrl-C stops an evaluation
)";

constexpr std::size_t textWidth = 78;

std::string_view trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t");
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(" \t") - start + 1);
}

// Appends words under a heading, filled into lines.
void appendWords(std::string& text, std::string_view heading,
                 const std::vector<std::string_view>& words) {
  text.append("\n").append(heading).append("\n ");
  std::size_t column = 1;
  for (const std::string_view word : words) {
    if (column + 1 + word.size() > textWidth) {
      text += "\n ";
      column = 1;
    }
    text.append(" ").append(word);
    column += 1 + word.size();
  }
  text += '\n';
}

// Appends a sentence or two, filled into indented lines.
void appendSentences(std::string& text, std::string_view sentences) {
  constexpr std::size_t indent = 2;
  while (!sentences.empty()) {
    std::size_t length = sentences.size();
    if (length > textWidth - indent) {
      const std::size_t blank = sentences.rfind(' ', textWidth - indent);
      length = blank == std::string_view::npos || blank == 0 ? textWidth - indent : blank;
    }
    text.append(indent, ' ').append(sentences.substr(0, length)).append("\n");
    sentences = trimmed(sentences.substr(length));
  }
}

std::vector<std::string_view> groups() {
  std::vector<std::string_view> found;
  for (const BuiltinHelp& row : builtinHelp())
    if (std::find(found.begin(), found.end(), row.group) == found.end()) found.push_back(row.group);
  return found;
}

std::vector<std::string_view> namesIn(std::string_view group) {
  std::vector<std::string_view> names;
  for (const BuiltinHelp& row : builtinHelp())
    if (row.group == group) names.push_back(row.name);
  return names;
}

std::string overview() {
  std::string text(replWords);
  std::vector<std::string_view> statements;
  for (const StatementHelp& row : statementHelp()) statements.push_back(row.name);
  appendWords(text, "statements of programs", statements);
  for (const std::string_view group : groups()) appendWords(text, group, namesIn(group));
  return text;
}

// The first word of a line and what follows it.
struct Words {
  std::string_view first, rest;
};

Words split(std::string_view line) {
  line = trimmed(line);
  const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
  return {line.substr(0, end), trimmed(line.substr(end))};
}

std::string pathOf(std::string_view words) {
  if (words.size() >= 2 && words.front() == '"' && words.back() == '"')
    words = words.substr(1, words.size() - 2);
  const char* const home = std::getenv("HOME");
  if (words.starts_with("~/") && home) return home + std::string(words.substr(1));
  return std::string(words);
}

std::vector<std::string> namesBeginningWith(std::string_view start) {
  std::set<std::string> names;
  const auto offer = [&](std::string_view name) {
    if (name.starts_with(start)) names.emplace(name);
  };
  for (const BuiltinHelp& row : builtinHelp()) offer(row.name);
  for (const StatementHelp& row : statementHelp()) offer(row.name);
  for (const VariableRow& row : CoreView().globals()) offer(row.name);
  for (const FunctionRow& row : CoreView().userFunctions()) offer(row.name);
  for (const std::string_view word : {"help", "load", "run", "quit", "exit"}) offer(word);
  return {names.begin(), names.end()};
}

class Repl {
 public:
  explicit Repl(TerminalShell& shell) : m_shell(shell), m_onTerminal(shell.canAsk()) {
    if (!m_onTerminal) {
      m_reader = std::make_unique<PlainLineReader>(shell.input());
      return;
    }
    m_history = std::make_unique<History>();
    m_reader = makeLineEditor(shell.input(), *m_history, namesBeginningWith, shell.coloured());
    if (!m_reader) m_reader = std::make_unique<PlainLineReader>(shell.input());
    writeAll(STDERR_FILENO, banner);
  }

  ~Repl() {
    if (m_history) m_history->save();
  }

  bool load(const std::string& path) {
    auto program = std::make_unique<MemoryDocument>();
    if (!loadProgram(m_shell, *program, path)) return false;
    keep(std::move(program));
    if (m_onTerminal) reportFunctions(path);
    return true;
  }

  int readAll() {
    while (!m_finished) {
      showPrintedLine();
      const InputLine line = m_reader->read(prompt());
      if (line.kind == InputLine::Kind::interrupted) {
        takeInterrupt();
        if (!m_onTerminal) return exitInterrupted;
        m_pending.clear();
        continue;
      }
      if (line.kind == InputLine::Kind::end) {
        if (!trimmed(m_pending).empty()) evaluate(std::exchange(m_pending, {}));
        break;
      }
      if (m_history && m_history->add(line.text)) m_reader->remember(line.text);
      accept(line.text);
      m_shell.output().flush();
    }
    return m_status;
  }

 private:
  std::string_view prompt() const {
    if (!m_onTerminal) return {};
    return m_pending.empty() ? firstPrompt : nextPrompt;
  }

  // A line that print left open must not be taken for a part of the prompt.
  void showPrintedLine() {
    OutputStream& output = m_shell.output();
    if (m_onTerminal && !output.lineIsEmpty() && ::isatty(STDOUT_FILENO) == 1)
      output.write("\n", lineAppend);
    output.flush();
  }

  void accept(const std::string& line) {
    if (m_pending.empty() && command(line)) return;
    m_pending += line;
    if (isUnfinished(m_pending)) {
      m_pending += '\n';
    } else if (trimmed(m_pending).empty()) {
      m_pending.clear();
    } else {
      evaluate(std::exchange(m_pending, {}));
    }
  }

  // A word of the repl alone, or followed by a name: `run = 3` is an assignment.
  bool command(std::string_view line) {
    auto [word, rest] = split(line);
    if (rest.empty() && word.ends_with(';')) word.remove_suffix(1);
    const bool assigns = !rest.empty() && std::string_view("=+-*/^&<>(,;[").find(rest.front()) !=
                                              std::string_view::npos;
    if (assigns) return false;
    if (word == "help") {
      m_shell.output().write(helpFor(rest), lineAppend);
    } else if (word == "load" || word == "run") {
      const std::string path = pathOf(rest);
      if (path.empty())
        fail(std::string(word) + " needs a file: " + std::string(word) + " PROGRAM.vxp");
      else if (word == "load" ? !load(path) : !run(path))
        m_status = std::max(m_status, exitStatusOfFailure());
    } else if (rest.empty() && (word == "quit" || word == "exit")) {
      m_finished = true;
    } else {
      return false;
    }
    return true;
  }

  bool run(const std::string& path) {
    ProgramFile file = readProgramFile(path);
    if (!file.problem.empty()) {
      fail(file.problem);
      return true;
    }
    auto program = std::make_unique<MemoryDocument>(std::move(file.text));
    m_shell.setProgramName(path);
    m_shell.activate(program.get());
    const bool started = CoreCommands().execute(*program);
    if (started) note(statusOfLastRun());
    keep(std::move(program));
    return started;
  }

  void evaluate(const std::string& text) {
    const Evaluation evaluation = evaluateAndShow(text);
    if (evaluation.interrupted)
      note(exitInterrupted);
    else if (evaluation.fault)
      note(exitFault);
  }

  // The status of the whole session. A person at a terminal has seen what went wrong.
  void note(int status) {
    if (m_onTerminal || status == exitNormal) return;
    m_status = status;
    if (status == exitInterrupted) m_finished = true;
  }

  void fail(const std::string& problem) {
    m_shell.complain(problem);
    note(exitFault);
  }

  int exitStatusOfFailure() const { return m_onTerminal ? exitNormal : exitFault; }

  // The functions go on to point into the document that brought them.
  void keep(std::unique_ptr<MemoryDocument> program) {
    if (m_program) CoreCommands().documentClosed(m_program.get());
    m_program = std::move(program);
  }

  void reportFunctions(const std::string& path) {
    const std::vector<FunctionRow> functions = CoreView().userFunctions();
    std::string names;
    for (const FunctionRow& row : functions) names += (names.empty() ? " " : ", ") + row.name;
    m_shell.writeMessage(path, std::to_string(functions.size()) + " functions", names);
  }

  TerminalShell& m_shell;
  bool m_onTerminal;
  bool m_finished = false;
  int m_status = exitNormal;
  std::string m_pending;
  std::unique_ptr<History> m_history;
  std::unique_ptr<LineReader> m_reader;
  std::unique_ptr<MemoryDocument> m_program;
};

}  // namespace

bool isUnfinished(std::string_view text) {
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"' || c == '\'') {
      // An open literal is a slip of the hand rather than the first line of a long one.
      const std::size_t end = text.find(c, i + 1);
      if (end == std::string_view::npos) return depth > 0;
      i = end;
    } else if (text.substr(i, 2) == "//") {
      i = text.find('\n', i);
      if (i == std::string_view::npos) break;
    } else if (text.substr(i, 2) == "/*") {
      i = text.find("*/", i + 2);
      if (i == std::string_view::npos) return true;
      ++i;
    } else if (c == '(' || c == '[' || c == '{') {
      ++depth;
    } else if (c == ')' || c == ']' || c == '}') {
      --depth;
    }
  }
  return depth > 0;
}

std::string helpFor(std::string_view name) {
  if (name.empty()) return overview();
  std::string text;
  const auto describe = [&text](std::string_view signature, std::string_view sentences) {
    text.append(signature).append("\n");
    appendSentences(text, sentences);
  };
  for (const StatementHelp& row : statementHelp())
    if (row.name == name) describe(row.signature, row.text);
  for (const BuiltinHelp& row : builtinHelp())
    if (row.name == name) describe(row.signature, row.text);
  for (const FunctionRow& row : CoreView().userFunctions())
    if (row.name == name)
      describe(row.signature, "A function of the program, line " + std::to_string(row.line) + ".");
  for (const std::string_view group : groups())
    if (group == name) appendWords(text, group, namesIn(group));
  if (text.empty()) text = "No help on " + std::string(name) + "; help alone lists all names.\n";
  return text;
}

int replCommand(const Options& options) {
  TerminalShell shell;
  shell.stopWithoutQuestion();
  const InterpreterScope scope(shell);
  catchInterrupts();
  Repl repl(shell);
  if (!options.program.empty() && !repl.load(options.program)) return shell.finish(exitUsage);
  const int status = repl.readAll();
  return shell.finish(status);
}

}  // namespace vexa
