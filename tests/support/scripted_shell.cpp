#include "support/scripted_shell.h"

#include <cstdio>

#include "interp/message_box.h"

namespace vexa {

namespace {

std::string number(double x) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", x);
  return text;
}

std::string nameOf(const TextDocument& document) {
  const auto* scripted = dynamic_cast<const CScriptedDocument*>(&document);
  return scripted ? scripted->name() : "unknown document";
}

std::string nameOf(Bar bar) {
  static const char* const names[] = {"locals", "values",    "calls",
                                      "errors", "functions", "globals"};
  return names[static_cast<int>(bar)];
}

}  // namespace

void CScriptedDocument::setRole(int role) {
  MemoryDocument::setRole(role);
  m_shell.record(m_name + " has role " + std::to_string(role));
}

void CScriptedDocument::beginRun() {
  MemoryDocument::beginRun();
  m_shell.record(m_name + " begins a run");
}

void CScriptedDocument::markErrorLine(int number, std::string_view message) {
  MemoryDocument::markErrorLine(number, message);
  m_shell.record(m_name + " marks line " + std::to_string(number));
}

CScriptedDocument& CScriptedShell::addDocument(std::string name, std::string text) {
  m_documents.push_back(
      std::make_unique<CScriptedDocument>(*this, std::move(name), std::move(text)));
  if (!activeTextDocument()) activate(m_documents.back().get());
  return *m_documents.back();
}

std::string CScriptedShell::outputText() const {
  std::string all;
  for (const auto& document : m_outputs) all += document->text();
  return all;
}

std::vector<std::string> CScriptedShell::calls(std::string_view beginning) const {
  std::vector<std::string> found;
  for (const std::string& call : m_calls)
    if (call.starts_with(beginning)) found.push_back(call.substr(beginning.size()));
  return found;
}

std::optional<std::string> CScriptedShell::nextAnswer() {
  if (answers.empty()) return std::nullopt;
  std::string answer = std::move(answers.front());
  answers.pop_front();
  return answer;
}

int CScriptedShell::messageBox(const MessageRequest& request) {
  const BoxLayout layout = layoutMessageBox(request.flags, request.context);
  const bool question = layout.icon == BoxIcon::question || request.flags == boxContinueTerminate;
  if (onMessage) onMessage(request);
  int answer = layout.defaultAnswer();
  if (question) {
    if (const auto given = nextAnswer()) answer = layout.answerNamed(*given);
  }
  record((question ? "question: " : "message: ") + request.text +
         (question ? " -> " + std::to_string(answer) : ""));
  return answer;
}

std::optional<std::string> CScriptedShell::fileDialog(const FileRequest& request) {
  std::deque<std::string>& files = request.save ? saveFiles : openFiles;
  std::optional<std::string> file;
  if (!files.empty()) {
    file = std::move(files.front());
    files.pop_front();
  }
  record((request.save ? "save dialog -> " : "open dialog -> ") + file.value_or("cancelled"));
  return file;
}

std::optional<std::string> CScriptedShell::textEntry(const TextRequest& request) {
  const auto answer = nextAnswer();
  record("text entry " + request.prompt + " -> " + answer.value_or("cancelled"));
  return answer;
}

std::optional<double> CScriptedShell::calculator(const CalcRequest& request) {
  while (const auto answer = nextAnswer()) {
    Evaluation evaluation;
    CoreCommands().evaluateInRun(*answer, evaluation);
    record("calculator " + request.prompt + " -> " + *answer);
    if (!evaluation.fault) return evaluation.value;
  }
  record("calculator " + request.prompt + " -> cancelled");
  return std::nullopt;
}

FormReply CScriptedShell::form(const FormRequest& request) {
  std::string call = "form " + request.title;
  if (request.badField >= 0) call += " again for field " + std::to_string(request.badField);
  FormReply reply;
  reply.accepted = !answers.empty();
  for (const FormField& field : request.fields) {
    reply.texts.push_back(nextAnswer().value_or(""));
    call += ", " + field.label + " = " + field.initial + " -> " + reply.texts.back();
  }
  record(std::move(call));
  return reply;
}

ElementPick CScriptedShell::viewData(const DataRequest& request) {
  ElementPick pick;
  if (request.mode == DataRequest::Mode::select) {
    if (const auto answer = nextAnswer())
      std::sscanf(answer->c_str(), "%d,%d", &pick.row, &pick.col);
  }
  record((request.mode == DataRequest::Mode::select ? "select in " : "view ") + request.name);
  return pick;
}

TextDocument& CScriptedShell::newOutputDocument() {
  m_outputs.push_back(
      std::make_unique<CScriptedDocument>(*this, "output " + std::to_string(m_outputs.size() + 1)));
  record("new " + m_outputs.back()->name());
  return *m_outputs.back();
}

void CScriptedShell::bringToFront(TextDocument& document) {
  record(nameOf(document) + " to the front");
}

void CScriptedShell::statusText(std::string_view text) { notice("status " + std::string(text)); }

void CScriptedShell::postMessage(std::string_view text) { record("post " + std::string(text)); }

void CScriptedShell::hideMessage() { record("hide message"); }

void CScriptedShell::progress(double fraction, std::string_view text) {
  notice("progress " + number(fraction) + ' ' + std::string(text));
}

void CScriptedShell::refresh(unsigned what) { notice("refresh " + std::to_string(what)); }

void CScriptedShell::showBar(Bar bar) {
  hiddenBars.erase(bar);
  record("show " + nameOf(bar));
}

bool CScriptedShell::openUrl(std::string_view address) {
  record("open " + std::string(address));
  return true;
}

void CScriptedShell::pump() { notice("pump"); }

Interrupt CScriptedShell::interruptRequested() {
  const auto scripted = interrupts.find(++m_polls);
  return scripted == interrupts.end() ? Interrupt::none : scripted->second;
}

void CScriptedShell::wait(double seconds) {
  m_time += seconds;
  notice("wait " + number(seconds));
}

std::string ScriptedSession::evaluate(std::string_view text) {
  StringSink shown;
  Evaluation evaluation;
  evaluation.show = [&shown](const ShownValue& value) { writeShownValue(value, shown); };
  if (!CoreCommands().evaluate(text, evaluation)) return "refused";
  return evaluation.fault ? evaluation.message : shown.text();
}

}  // namespace vexa
