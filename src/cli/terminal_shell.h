#pragma once

// The shell of the command line: output documents are standard output, messages are lines on
// standard error, dialogs are answered by options or, on a terminal, by the user.

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/line_input.h"
#include "cli/options.h"
#include "cli/output_stream.h"
#include "interp/silent_shell.h"

namespace vexa {

class TerminalShell : public SilentShell {
 public:
  // `options` fills the queues of answers.
  explicit TerminalShell(const Options& options = {});

  // By which name messages speak of the program.
  void setProgramName(std::string name) { m_programName = std::move(name); }
  // Makes Ctrl-C stop an evaluation without a question.
  void stopWithoutQuestion() { m_questionAtInterrupt = false; }

  bool canAsk() const { return m_canAsk; }
  bool coloured() const { return m_coloured; }
  StandardInput& input() { return m_input; }
  OutputStream& output() { return m_output; }
  int faultCount() const { return m_faults; }

  // Writes `PROGRAM: message: text` and the like to stderr, after what was printed so far.
  void writeMessage(std::string_view place, std::string_view kind, std::string_view text);
  // A line about the command itself: `vexa: text`.
  void complain(std::string_view text);
  // The rows of the calls to stderr, as --show-values asks.
  void writeCalls();
  // Writes what waits. Gives `status`, or exitUsage after a line about output that could not be
  // written; when the reader of a pipe has gone the process ends as such a process does.
  int finish(int status);

  int messageBox(const MessageRequest& request) override;
  std::optional<std::string> fileDialog(const FileRequest& request) override;
  std::optional<std::string> textEntry(const TextRequest& request) override;
  std::optional<double> calculator(const CalcRequest& request) override;
  FormReply form(const FormRequest& request) override;
  ElementPick viewData(const DataRequest& request) override;
  TextDocument& newOutputDocument() override;
  void postMessage(std::string_view text) override;
  bool openUrl(std::string_view address) override;
  void runEnds(bool fault) override;
  Interrupt interruptRequested() override;
  void wait(double seconds) override;

 private:
  std::optional<std::string> nextAnswer();
  // A line typed by the user; nothing at the end of the input or after Ctrl-C.
  std::optional<std::string> ask(std::string_view prompt);
  // An answer of the queue, otherwise of the user if there is one.
  std::optional<std::string> answerOrAsk(std::string_view prompt);
  int answerQuestion(const MessageRequest& request);
  std::string describeVariable(std::string_view name) const;

  std::deque<std::string> m_openFiles, m_saveFiles, m_answers;
  std::string m_programName = "CALC";
  bool m_canAsk;
  bool m_coloured;
  bool m_questionAtInterrupt = true;
  int m_faults = 0;
  double m_lastFlush = 0;
  std::vector<std::string> m_formTexts;  // the entries of the form that was shown last
  std::vector<std::unique_ptr<TextDocument>> m_documents;
  StandardInput m_input;
  OutputStream m_output{1};
};

}  // namespace vexa
