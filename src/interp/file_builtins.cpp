#include "interp/file_builtins.h"

#include <limits>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "interp/data_files.h"
#include "interp/globals_file.h"
#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "interp/output.h"
#include "values/argument_readers.h"
#include "values/evaluator_parts.h"

namespace vexa {

namespace {

using Purpose = BinaryFile::Purpose;

// A line of its own, below an empty one when the current line is empty.
void writeNotice(const char* what, const std::string& name) {
  endOutputLine();
  writeOutput(what + name, lineWhole);
}

// Asks for a name and opens the file. Null when the dialog was cancelled, or after a message.
std::unique_ptr<BinaryFile> openChosenFile(Purpose purpose) {
  FileRequest request;
  request.save = purpose == Purpose::write;
  const std::optional<std::string> name = shell().fileDialog(request);
  if (!name) return nullptr;
  auto file = BinaryFile::open(*name, purpose);
  if (!file) messageBox(findErrorMessage(ErrorKey::fileNotOpened)->head);
  return file;
}

double openDataFile(Purpose purpose, const char* notice) {
  constexpr double notOpened = -1.0;
  expectNoArguments();
  const int slot = dataFiles().firstFree();
  if (slot < 0) {
    raiseError(ErrorKey::tooManyFiles);
    return notOpened;
  }
  auto file = openChosenFile(purpose);
  if (!file) return notOpened;
  const std::string name = file->name();
  dataFiles().put(slot, std::move(file));
  writeNotice(notice, name);
  return slot;
}

// A file ID, which names an open file; otherwise key 77 and -1.
int readFileId() {
  const double id = evalScalarArg();
  const bool isSlot = id > -1.0 && id < dataFileLimit;
  const int slot = isSlot ? static_cast<int>(id) : -1;
  if (dataFiles().find(slot)) return slot;
  raiseError(ErrorKey::fileNotOpen);
  return -1;
}

// The file of an ID that has been read, looked up again: what was evaluated since then may have
// closed it. Null after key 77, also when it is open for the other purpose.
BinaryFile* fileFor(int slot, Purpose purpose) {
  BinaryFile* file = dataFiles().find(slot);
  if (file && file->purpose() == purpose) return file;
  raiseError(ErrorKey::fileNotOpen);
  return nullptr;
}

// ---- writefile ----

// Whether the next item is a matrix by its mark, or by a name that makes up the whole item.
bool matrixItemFollows() {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  bool follows = false;
  if (scanner.isMark()) {
    follows = true;
  } else if (scanner.tokenType == TOKEN_NAME && scanner.symbol && matrixOf(*scanner.symbol)) {
    const char next = nextCharacter();
    follows = next == ',' || next == ')';
  }
  rescanToken();
  return follows;
}

// Reads one item and writes its record. False when the file could not take it.
bool writeItem(int slot) {
  constexpr auto purpose = Purpose::write;
  if (getToken() == TOKEN_STRING) {
    const std::string text(interpreter().scanner.tokenText);
    writeOutput(text, lineWhole);
    BinaryFile* file = fileFor(slot, purpose);
    return file && writeTextRecord(*file, text);
  }
  rescanToken();
  if (matrixItemFollows()) {
    const MatrixArgument matrix = readMatrix(true);
    BinaryFile* file = fileFor(slot, purpose);
    return file && writeMatrixRecord(*file, *matrix);
  }
  const double x = evalScalarArg();
  BinaryFile* file = fileFor(slot, purpose);
  return file && writeNumberRecord(*file, x);
}

// ---- readfile ----

void raiseRecordFault(RecordOutcome outcome) {
  switch (outcome) {
    case RecordOutcome::complete:
      break;
    case RecordOutcome::damaged:
      raiseError(ErrorKey::fileCorrupted);
      break;
    case RecordOutcome::tooLong:
      raiseError(ErrorKey::tooLong);
      break;
    case RecordOutcome::noMemory:
      raiseError(ErrorKey::allocationFailed);
      break;
  }
}

// A variable's name; what it may name depends on the record that is met.
std::string readTargetName() {
  acceptChar('!');
  if (getToken() == TOKEN_KEYWORD) raiseError(ErrorKey::nameIsKeyword);
  rescanToken();
  return readName().text;
}

// Shows the texts up to the next value and stores that.
void readIntoVariable(BinaryFile& file, const std::string& name) {
  DataRecord record;
  do {
    const RecordOutcome outcome = readRecord(file, record);
    if (outcome != RecordOutcome::complete) {
      raiseRecordFault(outcome);
      return;
    }
    if (record.text) writeOutput(*record.text, lineWhole);
  } while (record.text);
  if (record.matrix)
    resultMatrix(name).swapContents(*record.matrix);
  else
    storeScalar(name, record.number);
}

// ---- Global variables ----

double saveGlobals() {
  const auto file = openChosenFile(Purpose::write);
  if (!file) return 0.0;
  const double count = globalsFileCount();
  if (!writeGlobals(*file)) raiseError(ErrorKey::fileNotOpened);
  return count;
}

void mergeGlobals() {
  const auto file = openChosenFile(Purpose::read);
  if (!file) return;
  std::string conflict;
  switch (readGlobals(*file, conflict)) {
    case GlobalsOutcome::complete:
      break;
    case GlobalsOutcome::notADataFile:
      messageBox("Not a Data File");
      return;
    case GlobalsOutcome::damaged:
      raiseError(ErrorKey::fileCorrupted);
      return;
    case GlobalsOutcome::noMemory:
      raiseError(ErrorKey::allocationFailed);
      return;
    case GlobalsOutcome::localConflict:
      messageBox(" Abort! Name conflicts with local matrix: " + conflict);
      break;
  }
  InterpreterState& state = interpreter();
  state.changed(Bar::globals);
  state.changed(Bar::values);
  state.shell->refresh(refreshValues);
}

}  // namespace

double openfiletowriteBuiltin() { return openDataFile(Purpose::write, " Writing file: "); }
double openfiletoreadBuiltin() { return openDataFile(Purpose::read, " Reading file: "); }

double writefileBuiltin() {
  expectChar('(');
  const int slot = readFileId();
  if (!fileFor(slot, Purpose::write)) return noResult();
  expectChar(',');
  do {
    if (writeItem(slot)) continue;
    raiseError(ErrorKey::fileNotOpened);
    return noResult();
  } while (moreArguments());
  BinaryFile* file = dataFiles().find(slot);
  if (file && !file->flush()) raiseError(ErrorKey::fileNotOpened);
  return noResult();
}

// The delimiter after a name is read before its value, so that `readfile(f, m[2])` changes nothing.
double readfileBuiltin() {
  expectChar('(');
  const int slot = readFileId();
  if (!fileFor(slot, Purpose::read)) return noResult();
  expectChar(',');
  bool more = true;
  while (more) {
    const std::string name = readTargetName();
    more = moreArguments();
    BinaryFile* file = fileFor(slot, Purpose::read);
    if (!file) break;
    readIntoVariable(*file, name);
  }
  return noResult();
}

double rewindfileBuiltin() {
  expectChar('(');
  const int slot = readFileId();
  expectChar(')');
  BinaryFile* file = dataFiles().find(slot);
  if (!file) return -1.0;
  const bool atStart = file->rewind();
  writeNotice(" Rewound file: ", file->name());
  return atStart ? 0.0 : -1.0;
}

double closefileBuiltin() {
  expectChar('(');
  const int slot = readFileId();
  expectChar(')');
  if (slot >= 0) dataFiles().close(slot);
  return slot;
}

double closeallfilesBuiltin() {
  expectNoArguments();
  return closeAllDataFiles();
}

double globalvarsBuiltin() {
  const bool saves = interpreter().currentBuiltin == builtinCode("saveglobalvars");
  expectNoArguments();
  if (saves) return saveGlobals();
  mergeGlobals();
  return noResult();
}

}  // namespace vexa
