#include "cli/terminal_shell.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "cli/interrupt.h"
#include "cli/program_file.h"
#include "interp/core_view.h"
#include "interp/message_box.h"
#include "values/number_format.h"

namespace vexa {

namespace {

// Printed text waits no longer than this for its place on a screen or in a pipe.
constexpr double longestWait = 0.1;

// All output documents of a run are standard output.
class PrintedDocument : public TextDocument {
 public:
  explicit PrintedDocument(OutputStream& stream) : m_stream(stream) {}
  int role() const override { return m_role; }
  void setRole(int role) override { m_role = role; }
  bool loaded() const override { return true; }
  int lineCount() const override { return 0; }
  std::string line(int) const override { return {}; }
  void write(std::string_view text, char mode) override { m_stream.write(text, mode); }
  void beginRun() override {}
  void markErrorLine(int, std::string_view) override {}

 private:
  OutputStream& m_stream;
  int m_role = roleNone;
};

bool wantsColour() {
  const char* const refused = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return ::isatty(STDERR_FILENO) == 1 && !(refused && *refused) && terminal && *terminal &&
         std::strcmp(terminal, "dumb") != 0;
}

// A line end inside a message is written as a blank.
void appendAsOneLine(std::string& line, std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    line += text[i] == '\r' || text[i] == '\n' ? ' ' : text[i];
  }
}

std::string withoutMark(std::string_view label) {
  std::string text;
  std::copy_if(label.begin(), label.end(), std::back_inserter(text),
               [](char c) { return c != '&'; });
  return text;
}

// A box that only reports has one answer, or those of a failure that nobody can mend here.
bool isQuestion(const BoxLayout& layout) {
  const auto answers = std::count_if(layout.buttons.begin(), layout.buttons.end(),
                                     [](const BoxButton& button) { return button.answer != 0; });
  return layout.icon != BoxIcon::error && answers > 1;
}

std::string labelOf(const BoxLayout& layout, int answer) {
  for (const BoxButton& button : layout.buttons)
    if (button.answer == answer && answer != 0) return withoutMark(button.label);
  return {};
}

// "i,j" or "i" as numbers; 0, 0 for anything else.
ElementPick parsePick(std::string_view text, const Matrix& matrix) {
  int values[2] = {0, 0};
  int count = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (count < 2) {
    while (at != end && *at == ' ') ++at;
    const auto [next, error] = std::from_chars(at, end, values[count]);
    if (error != std::errc()) return {};
    ++count;
    at = next;
    while (at != end && *at == ' ') ++at;
    if (at == end || *at != ',') break;
    ++at;
  }
  ElementPick pick{values[0], values[1]};
  if (count == 1) {
    if (matrix.rows() == 1)
      pick = {1, values[0]};
    else if (matrix.cols() == 1)
      pick = {values[0], 1};
  }
  const bool inside = at == end && pick.row >= 1 && pick.row <= matrix.rows() && pick.col >= 1 &&
                      pick.col <= matrix.cols();
  return inside ? pick : ElementPick{};
}

std::string shortNumber(double x) {
  char text[generalNumberSize(6, 0)];
  return {text, formatGeneral(text, x, 6, 0)};
}

template <class Words>
std::deque<std::string> queueOf(const Words& words) {
  return {words.begin(), words.end()};
}

}  // namespace

TerminalShell::TerminalShell(const Options& options)
    : m_openFiles(queueOf(options.openFiles)),
      m_saveFiles(queueOf(options.saveFiles)),
      m_answers(queueOf(options.answers)),
      m_canAsk(::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1),
      m_coloured(wantsColour()) {}

void TerminalShell::writeMessage(std::string_view place, std::string_view kind,
                                 std::string_view text) {
  m_output.flush();
  std::string line;
  if (m_coloured) line += kind == "error" ? "\033[1;31m" : "\033[1m";
  line += onOneLine(std::string(place));
  line.append(": ").append(kind).append(":");
  if (m_coloured) line += "\033[0m";
  appendAsOneLine(line, text);
  line += '\n';
  writeAll(STDERR_FILENO, line);
}

void TerminalShell::complain(std::string_view text) {
  m_output.flush();
  std::string line = "vexa: ";
  appendAsOneLine(line, text);
  line += '\n';
  writeAll(STDERR_FILENO, line);
}

void TerminalShell::writeCalls() {
  for (const ListRow& row : CoreView().errorRows()) {
    if (!row.isCall) continue;
    const std::string place =
        row.line < 0 ? "CALC" : m_programName + ':' + std::to_string(row.line);
    writeMessage(place, "call", ' ' + row.message);
  }
}

int TerminalShell::finish(int status) {
  m_output.flush();
  const int failure = m_output.failure();
  if (failure == 0) return status;
  if (failure == EPIPE) {
    std::signal(SIGPIPE, SIG_DFL);
    std::raise(SIGPIPE);
  } else {
    complain(std::string("cannot write the output: ") + std::strerror(failure) +
             "; make room or print elsewhere");
  }
  return exitUsage;
}

int TerminalShell::messageBox(const MessageRequest& request) {
  const BoxLayout layout = layoutMessageBox(request.flags, request.context);
  // Nobody reads the rest: what follows from that is no news either.
  if (m_output.failure() != 0) return layout.defaultAnswer();
  if (request.fault) {
    ++m_faults;
    writeMessage(request.line < 0 ? "CALC" : m_programName + ':' + std::to_string(request.line),
                 "error", request.text);
    return layout.defaultAnswer();
  }
  if (isQuestion(layout)) return answerQuestion(request);
  writeMessage(m_programName, "message", ' ' + request.text);
  return layout.defaultAnswer();
}

int TerminalShell::answerQuestion(const MessageRequest& request) {
  const BoxLayout layout = layoutMessageBox(request.flags, request.context);
  // Whether to go on is asked of who pressed Ctrl-C, not of the program's prepared answers.
  const bool fromQueue = !m_answers.empty() && request.flags != boxContinueTerminate;
  if (!fromQueue && m_canAsk) {
    std::string prompt = onOneLine(m_programName) + ": question: ";
    appendAsOneLine(prompt, request.text);
    std::string choices;
    for (const BoxButton& button : layout.buttons)
      if (button.answer != 0) choices += (choices.empty() ? "" : "/") + withoutMark(button.label);
    prompt += " [" + choices + "] -> ";
    const std::optional<std::string> typed = ask(prompt);
    if (request.flags == boxContinueTerminate && takeInterrupt())
      return layout.answerNamed("Terminate");
    return typed ? layout.answerNamed(*typed) : layout.defaultAnswer();
  }
  const int answer = fromQueue ? layout.answerNamed(*nextAnswer()) : layout.defaultAnswer();
  writeMessage(m_programName, "question", ' ' + request.text + " -> " + labelOf(layout, answer));
  return answer;
}

std::optional<std::string> TerminalShell::nextAnswer() {
  if (m_answers.empty()) return std::nullopt;
  std::string answer = std::move(m_answers.front());
  m_answers.pop_front();
  return answer;
}

std::optional<std::string> TerminalShell::ask(std::string_view prompt) {
  m_output.flush();
  writeAll(STDERR_FILENO, prompt);
  InputLine line = m_input.readLine();
  if (line.kind == InputLine::Kind::line) return std::move(line.text);
  writeAll(STDERR_FILENO, "\n");
  return std::nullopt;
}

std::optional<std::string> TerminalShell::answerOrAsk(std::string_view prompt) {
  if (!m_answers.empty()) return nextAnswer();
  if (m_canAsk) return ask(prompt);
  return std::nullopt;
}

std::optional<std::string> TerminalShell::fileDialog(const FileRequest& request) {
  std::deque<std::string>& files = request.save ? m_saveFiles : m_openFiles;
  std::optional<std::string> file;
  if (!files.empty()) {
    file = std::move(files.front());
    files.pop_front();
  } else if (m_canAsk) {
    file = ask(request.save ? "File to write: " : "File to read: ");
  }
  if (file && file->empty()) file.reset();
  return file;
}

std::optional<std::string> TerminalShell::textEntry(const TextRequest& request) {
  std::optional<std::string> text = answerOrAsk(request.prompt + ' ');
  if (!text && !m_canAsk) return std::string();
  return text;
}

std::optional<double> TerminalShell::calculator(const CalcRequest& request) {
  const std::string initial = shortNumber(request.initial);
  const std::string prompt =
      (request.prompt.empty() ? "Value" : request.prompt) + " [" + initial + "]: ";
  while (true) {
    const std::optional<std::string> typed = answerOrAsk(prompt);
    if (!typed) return m_canAsk ? std::nullopt : std::optional<double>(0.0);
    if (typed->find_first_not_of(" \t") == std::string::npos) return request.initial;
    Evaluation evaluation;
    if (!CoreCommands().evaluateInRun(*typed, evaluation)) return std::nullopt;
    if (!evaluation.fault && !evaluation.interrupted) return evaluation.value;
    if (evaluation.interrupted) return std::nullopt;
  }
}

FormReply TerminalShell::form(const FormRequest& request) {
  const std::size_t count = request.fields.size();
  const bool again = request.badField >= 0 && m_formTexts.size() == count;
  if (!again) m_formTexts.assign(count, {});
  if (m_canAsk && m_answers.empty() && !again && !request.title.empty()) {
    m_output.flush();
    writeAll(STDERR_FILENO, request.title + '\n');
  }
  for (std::size_t i = 0; i < count; ++i) {
    const FormField& field = request.fields[i];
    const std::string prompt =
        "  " + (field.label.empty() ? field.name : field.label) + " [" + field.initial + "]: ";
    std::optional<std::string> typed = answerOrAsk(prompt);
    if (!typed && m_canAsk) return {};
    // A form that comes again shows what was entered; an empty answer keeps it, unless it was bad.
    const bool keep = again && i != static_cast<std::size_t>(request.badField);
    if (!keep || !typed.value_or("").empty()) m_formTexts[i] = typed.value_or("");
  }
  return {true, m_formTexts};
}

ElementPick TerminalShell::viewData(const DataRequest& request) {
  if (request.mode != DataRequest::Mode::select) {
    writeMessage(m_programName, "message", ' ' + describeVariable(request.name));
    return {};
  }
  const Matrix* matrix = CoreView().matrix(request.name);
  if (!matrix) return {};
  const std::optional<std::string> typed =
      answerOrAsk("Element of " + describeVariable(request.name) + ": ");
  return typed ? parsePick(*typed, *matrix) : ElementPick{};
}

std::string TerminalShell::describeVariable(std::string_view name) const {
  const std::optional<VariableRow> row = CoreView().variable(name);
  std::string text(name);
  if (!row) return text;
  switch (row->kind) {
    case VariableRow::Kind::scalar:
    case VariableRow::Kind::wholeNumber:
      return text + " = " + shortNumber(row->value);
    case VariableRow::Kind::matrix:
      return text + '[' + std::to_string(row->rows) + 'x' + std::to_string(row->cols) + ']';
    case VariableRow::Kind::string:
      return text + " = \"" + row->text + '"';
  }
  return text;
}

TextDocument& TerminalShell::newOutputDocument() {
  m_documents.push_back(std::make_unique<PrintedDocument>(m_output));
  return *m_documents.back();
}

void TerminalShell::postMessage(std::string_view text) {
  writeMessage(m_programName, "message", ' ' + std::string(text));
}

bool TerminalShell::openUrl(std::string_view address) {
  writeMessage(m_programName, "message", "  " + std::string(address));
  return false;
}

void TerminalShell::runEnds(bool) { m_output.flush(); }

Interrupt TerminalShell::interruptRequested() {
  if (m_output.failure() != 0) return Interrupt::stop;
  if (takeInterrupt())
    return m_canAsk && m_questionAtInterrupt ? Interrupt::escape : Interrupt::stop;
  if (m_output.waiting()) {
    const double now = clock();
    if (now - m_lastFlush >= longestWait) {
      m_output.flush();
      m_lastFlush = now;
    }
  }
  return Interrupt::none;
}

void TerminalShell::wait(double seconds) {
  m_output.flush();
  const double end = clock() + seconds;
  for (double left = seconds; left > 0 && !interruptPending(); left = end - clock())
    waitUnlessInterrupted(-1, left);
}

}  // namespace vexa
