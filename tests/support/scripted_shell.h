#pragma once

// A shell for tests: answers come from queues, and every call is recorded in order as a line that
// a test can compare.

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "interp/core_view.h"
#include "interp/memory_document.h"
#include "interp/silent_shell.h"

namespace vexa {

class CScriptedShell;

// A text document with a name by which the records speak of it.
class CScriptedDocument : public MemoryDocument {
 public:
  CScriptedDocument(CScriptedShell& shell, std::string name, std::string text = {})
      : MemoryDocument(std::move(text)), m_shell(shell), m_name(std::move(name)) {}

  const std::string& name() const { return m_name; }
  void setRole(int role) override;
  void beginRun() override;
  void markErrorLine(int number, std::string_view message) override;

 private:
  CScriptedShell& m_shell;
  std::string m_name;
};

class CScriptedShell : public SilentShell {
 public:
  // Adds a document; without an active one it becomes that.
  CScriptedDocument& addDocument(std::string name, std::string text = {});
  // The output documents that the core asked for, in order: "output 1", "output 2", ...
  CScriptedDocument& output(std::size_t index) { return *m_outputs.at(index); }
  std::size_t outputCount() const { return m_outputs.size(); }
  std::string outputText() const;  // of all of them

  // The scripts. Questions, text entries, calculators, form fields and picks share `answers`.
  std::deque<std::string> answers, openFiles, saveFiles;
  // Interrupts by the number of the interrupt test, from 1, that sees them.
  std::map<int, Interrupt> interrupts;
  // Called for each message box before it is answered.
  std::function<void(const MessageRequest&)> onMessage;
  std::set<Bar> hiddenBars;
  // Whether the calls without which a run is the same are recorded too.
  bool recordNotices = false;

  const std::vector<std::string>& calls() const { return m_calls; }
  // Those records that begin so, without that beginning.
  std::vector<std::string> calls(std::string_view beginning) const;
  void record(std::string call) { m_calls.push_back(std::move(call)); }
  void clearRecords() { m_calls.clear(); }

  int messageBox(const MessageRequest& request) override;
  std::optional<std::string> fileDialog(const FileRequest& request) override;
  std::optional<std::string> textEntry(const TextRequest& request) override;
  std::optional<double> calculator(const CalcRequest& request) override;
  FormReply form(const FormRequest& request) override;
  ElementPick viewData(const DataRequest& request) override;

  TextDocument& newOutputDocument() override;
  void bringToFront(TextDocument& document) override;
  using SilentShell::bringToFront;

  void statusText(std::string_view text) override;
  void postMessage(std::string_view text) override;
  void hideMessage() override;
  void progress(double fraction, std::string_view text) override;
  void refresh(unsigned what) override;
  bool barShown(Bar bar) const override { return !hiddenBars.contains(bar); }
  void showBar(Bar bar) override;
  bool openUrl(std::string_view address) override;

  void runBegins() override { record("run begins"); }
  void runEnds(bool fault) override { record(fault ? "run ends with a fault" : "run ends"); }
  void pump() override;
  Interrupt interruptRequested() override;
  void wait(double seconds) override;
  double clock() override { return m_time += 0.001; }

 private:
  std::optional<std::string> nextAnswer();
  void notice(std::string call) {
    if (recordNotices) record(std::move(call));
  }

  std::vector<std::string> m_calls;
  std::vector<std::unique_ptr<CScriptedDocument>> m_documents, m_outputs;
  int m_polls = 0;
  double m_time = 0;
};

// A fresh interpreter behind a scripted shell, with one program document that is active.
struct ScriptedSession {
  explicit ScriptedSession(std::string programText = {})
      : program(shell.addDocument("program", std::move(programText))) {}

  bool run() { return CoreCommands().execute(program); }
  bool run(std::string text) {
    program.setText(std::move(text));
    return run();
  }
  // The shown values of an evaluated line, each as whole lines; a fault is its message.
  std::string evaluate(std::string_view text);
  // The messages that were shown, faults and others, in order.
  std::vector<std::string> messages() const { return shell.calls("message: "); }
  std::string outputText() const { return shell.outputText(); }

  CScriptedShell shell;
  CScriptedDocument& program;
  InterpreterScope scope{shell};
  CoreView view;
};

}  // namespace vexa
