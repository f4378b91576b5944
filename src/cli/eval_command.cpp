#include "cli/eval_command.h"

#include <utility>

#include "cli/interrupt.h"
#include "cli/program_file.h"
#include "interp/output.h"

namespace vexa {

Evaluation evaluateAndShow(const std::string& text) {
  Evaluation evaluation;
  evaluation.show = [](const ShownValue& value) { writeShownValue(value, outputSink()); };
  CoreCommands().evaluate(text, evaluation);
  return evaluation;
}

bool loadProgram(TerminalShell& shell, MemoryDocument& program, const std::string& path) {
  ProgramFile file = readProgramFile(path);
  if (!file.problem.empty()) {
    shell.complain(file.problem);
    return false;
  }
  program.setText(std::move(file.text));
  shell.setProgramName(path);
  CoreCommands commands;
  if (!commands.setProgram(program) || !commands.updateFunctions()) {
    commands.documentClosed(&program);
    return false;
  }
  shell.activate(&program);
  return true;
}

int evalCommand(const Options& options) {
  TerminalShell shell;
  MemoryDocument program;
  const InterpreterScope scope(shell);
  if (!options.program.empty() && !loadProgram(shell, program, options.program)) return exitUsage;
  catchInterrupts();
  const bool programIsWhole = shell.faultCount() == 0;
  const Evaluation evaluation = evaluateAndShow(options.expression);
  if (evaluation.interrupted) return shell.finish(exitInterrupted);
  return shell.finish(evaluation.fault || !programIsWhole ? exitFault : exitNormal);
}

}  // namespace vexa
