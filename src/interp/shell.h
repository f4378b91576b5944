#pragma once

// What a front (command line, desktop, test) supplies to the core, and the little it gets back.
//
// The core never writes to a stream, asks a question, reads a clock, opens a window or ends the
// process; it asks the Shell. All texts are bytes: UTF-8 where they are valid UTF-8. Every call is
// made on the one thread that runs programs.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "interp/text_sink.h"

namespace vexa {

class CMiniDrawDoc;

enum class Interrupt { none, escape, stop };
enum class Bar { locals, values, calls, errors, functions, globals };

// Which displays a front should bring up to date; values combine. refreshRunStart empties the
// lists.
enum Refresh : unsigned {
  refreshValues = 1,
  refreshLocals = 2,
  refreshCalls = 4,
  refreshErrors = 8,
  refreshFunctions = 16,
  refreshRunStart = 32
};

// A message box. The low four bits of `flags` choose the buttons, the next four the kind of
// message (see message_box.h). `context` is the name of the executing function, or empty.
// For a fault, `line` is its program line, or -1 when it lies in no program.
struct MessageRequest {
  std::string text;
  unsigned flags = 0;
  std::string context;
  int line = -1;
  bool fault = false;
};

struct FileRequest {
  bool save = false;
  std::string filter = "All Files(*.*)|*.*||";
  std::string extension = "Dat";
};

// The `?` of a string assignment.
struct TextRequest {
  std::string prompt, initial;
};

// The `?` operand and `calc`. `complaint` tells why the previous entry was refused, or is empty.
struct CalcRequest {
  std::string prompt;
  double initial = 0;
  std::string complaint;
};

struct FormField {
  enum class Kind { number, text, yesNo, choice, matrix } kind = Kind::number;
  std::string label, name, initial;
  std::vector<std::string> choices;
  int rows = 1, cols = 1;
};

// A form that comes again after a refused entry names the field in badField (from 0) and says why.
struct FormRequest {
  std::string title;
  std::vector<FormField> fields;
  int badField = -1;
  std::string complaint;
};

struct FormReply {
  bool accepted = false;
  std::vector<std::string> texts;
};

struct DataRequest {
  enum class Mode { view, select, debug } mode = Mode::view;
  std::string name;
};

// The element a person picked, numbered from 1; 0, 0 when nothing was picked.
struct ElementPick {
  int row = 0, col = 0;
};

// Roles of a text document.
inline constexpr int roleNone = 0;
inline constexpr int roleOutput = 2;    // has received program output
inline constexpr int roleExecuted = 3;  // its program is being or was last executed

// A program or output document as the core sees it. Owned by the front, which tells the core
// (CoreCommands::documentClosed) before it destroys one.
class TextDocument : public TextSink {
 public:
  virtual int role() const = 0;
  virtual void setRole(int role) = 0;
  virtual bool loaded() const = 0;
  virtual int lineCount() const = 0;
  // From 1, without its line end.
  virtual std::string line(int number) const = 0;
  virtual void beginRun() = 0;
  virtual void markErrorLine(int number, std::string_view message) = 0;
};

// The view of a drawing, in logical units.
class DrawingWindow {
 public:
  virtual ~DrawingWindow() = default;
  // The figures from this position on are new or have changed: repaint soon. Requests merge.
  virtual void changed(std::size_t firstFigure) = 0;
  // The upper end of the world range, for a display of world coordinates.
  virtual void setYMaximum(double) {}
  virtual void centreOn(int x, int y) = 0;
  virtual void zoomIn(int x, int y, float factor) = 0;
  virtual void zoomOut(int x, int y, float factor) = 0;
  virtual void zoomNormal() = 0;
};

class Shell {
 public:
  virtual ~Shell() = default;

  // A person answers.
  // The code of the pressed button: 1 OK, 2 Cancel or Continue, 4 Retry, 6 Yes, 7 No or Terminate,
  // 0 otherwise.
  virtual int messageBox(const MessageRequest& request) = 0;
  virtual std::optional<std::string> fileDialog(const FileRequest& request) = 0;
  virtual std::optional<std::string> textEntry(const TextRequest& request) = 0;
  // The accepted value; nothing when the person cancelled. A front that reads a typed expression
  // evaluates it through CoreCommands::evaluateInRun.
  virtual std::optional<double> calculator(const CalcRequest& request) = 0;
  virtual FormReply form(const FormRequest& request) = 0;
  virtual ElementPick viewData(const DataRequest& request) = 0;

  // Documents.
  virtual TextDocument* activeTextDocument() = 0;  // null when another kind is active
  virtual TextDocument& newOutputDocument() = 0;
  virtual void bringToFront(TextDocument& document) = 0;
  // The drawing in front; null when another kind of document is active. Drawings belong to the
  // front, which tells the core (CoreCommands::documentClosed) before it destroys one.
  virtual CMiniDrawDoc* activeDrawing() = 0;
  // A new drawing, emptied so that it holds its font item, in front.
  virtual CMiniDrawDoc& newDrawing() = 0;
  virtual DrawingWindow& windowOf(CMiniDrawDoc& drawing) = 0;
  virtual void bringToFront(CMiniDrawDoc& drawing) = 0;

  // Notices.
  virtual void statusText(std::string_view text) = 0;   // empty clears
  virtual void postMessage(std::string_view text) = 0;  // hideMessage takes it away
  virtual void hideMessage() = 0;
  virtual void progress(double fraction, std::string_view text) = 0;  // negative closes it
  virtual void refresh(unsigned what) = 0;
  virtual bool barShown(Bar bar) const = 0;
  virtual void showBar(Bar bar) = 0;
  virtual bool openUrl(std::string_view address) = 0;  // false when it could not be opened

  // The course of a run.
  virtual void runBegins() = 0;
  virtual void runEnds(bool fault) = 0;
  virtual void pump() = 0;  // at each function entry
  // Asked by the scanner now and then; true once for each press. `escape` lets the core ask
  // whether to go on, `stop` ends the run without a question: a front that cannot ask answers stop.
  virtual Interrupt interruptRequested() = 0;
  virtual void wait(double seconds) = 0;  // returns early when an interrupt is pending
  virtual double clock() = 0;             // seconds of a steady clock
};

}  // namespace vexa
