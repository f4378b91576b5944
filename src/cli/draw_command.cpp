#include "cli/draw_command.h"

#include <unistd.h>

#include "cli/output_stream.h"
#include "cli/picture_file.h"
#include "cli/program_file.h"
#include "graphics/document/drawing_file.h"

namespace vexa {

namespace {

void writeLine(const std::string& text) { writeAll(STDERR_FILENO, text + '\n'); }

int refuse(const std::string& text) {
  writeLine(text);
  return exitUsage;
}

}  // namespace

int drawCommand(const Options& options) {
  ProgramFile file = readProgramFile(options.program);
  if (!file.problem.empty()) return refuse("vexa: " + file.problem);
  const std::string name = onOneLine(options.program);
  CMiniDrawDoc document;
  const DrawingLoad load = readDrawing(file.text, document);
  if (!load.complete()) return refuse(name + ": error: " + std::string(loadMessage(load)));
  // The drawing holds all of it by now.
  file.text = {};
  const std::string problem = writePicture(document, options.drawing, options.picture);
  if (!problem.empty()) return refuse("vexa: " + problem);
  writeLine(name + ": message: " + std::string(drawingLoadNote));
  return exitNormal;
}

}  // namespace vexa
