#include "interp/globals_file.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "interp/data_files.h"
#include "interp/declarations.h"
#include "interp/interpreter_state.h"
#include "values/argument_readers.h"
#include "values/character_class.h"

namespace vexa {

namespace {

constexpr std::array<char, 9> magic = {'D', 'a', 't', 'a', 'F', 'i', 'l', 'e', '\0'};

constexpr std::size_t nameBlockSize = 28;
constexpr std::size_t stateByte = 26;
constexpr std::size_t matrixFlagsByte = 27;
using NameBlock = std::array<char, nameBlockSize>;

NameBlock nameBlockOf(const Symbol& symbol) {
  NameBlock block{};
  std::ranges::copy(symbol.name(), block.begin());
  block[stateByte] = symbol.state;
  block[matrixFlagsByte] = symbol.type == typeMatrix ? flagsByte(*symbol.matrix) : symbol.flags;
  return block;
}

bool writeVariable(BinaryFile& file, const Symbol& symbol) {
  if (!file.writeBytes(nameBlockOf(symbol))) return false;
  if (symbol.type != typeMatrix)
    return file.writeInteger(1) && file.writeInteger(0) && file.writeNumber(symbol.value);
  const Matrix& matrix = *symbol.matrix;
  return file.writeInteger(matrix.rows()) && file.writeInteger(matrix.cols()) &&
         file.writeNumbers(matrix.elements());
}

// A record up to its payload.
struct RecordHead {
  std::string name;
  char flags = 0;
  std::int32_t rows = 0, cols = 0;

  bool hasPayload() const { return rows != 0 || cols != 0; }
  bool isFloat() const { return rows == 1 && cols == 0; }
};

// The name in a block, or false: it must end within its place and be one that a program could
// write, or a companion's: "#" and a byte of any value.
bool readName(const NameBlock& block, std::string& name) {
  const auto* const end = std::find(block.begin(), block.begin() + stateByte, '\0');
  if (end == block.begin() + stateByte) return false;
  name.assign(block.begin(), end);
  if (name.size() == 2 && name[0] == '#') return true;
  return std::ranges::all_of(name, [](char c) { return isCharacter(c, charNamePart); }) &&
         (name.empty() || isCharacter(name[0], charLetter));
}

bool readHead(BinaryFile& file, RecordHead& head) {
  NameBlock block;
  if (!file.readBytes(block) || !file.readInteger(head.rows) || !file.readInteger(head.cols))
    return false;
  head.flags = block[matrixFlagsByte];
  return readName(block, head.name) && !(head.isFloat() && head.name.starts_with('#'));
}

// Bytes behind the head, or nothing when the orders are senseless or beyond the file.
std::optional<std::uint64_t> payloadBytes(BinaryFile& file, const RecordHead& head) {
  if (!head.hasPayload()) return 0;
  if (head.isFloat()) return sizeof(double);
  return elementBytes(file, head.rows, head.cols);
}

struct FileHead {
  std::int32_t count = 0;
  std::int32_t displaySetting = 0;
};

bool readFileHead(BinaryFile& file, FileHead& head) {
  return file.readInteger(head.count) && file.readInteger(head.displaySetting) && head.count >= 0;
}

// Passes over the records. False when one makes no sense or breaks off.
bool examineRecords(BinaryFile& file, std::int32_t count) {
  for (std::int32_t i = 0; i < count && file.holds(1); ++i) {
    RecordHead head;
    if (!readHead(file, head)) return false;
    const auto bytes = payloadBytes(file, head);
    if (!bytes || !file.skip(*bytes)) return false;
  }
  return true;
}

bool isLocalMatrix(std::string_view name) {
  if (lookUpName(name) != NameKind::local) return false;
  const InterpreterState& state = interpreter();
  return state.calls.local(state.scanner.nameIndex).type == typeMatrix;
}

void mergeFloat(const RecordHead& head, double x) {
  const Symbol* known = interpreter().names.find(head.name);
  const bool isNew = !known || !known->isGlobal();
  Symbol* symbol = makeFloat(head.name);
  if (!symbol) return;
  if (isNew && head.flags == flagWhole) symbol->flags = flagWhole;
  symbol->value = wholeNumber(x, symbol->flags == flagWhole);
}

GlobalsOutcome mergeMatrix(BinaryFile& file, const RecordHead& head, std::string& conflict) {
  if (isLocalMatrix(head.name)) {
    conflict = head.name;
    return GlobalsOutcome::localConflict;
  }
  std::unique_ptr<Matrix> matrix;
  const RecordOutcome outcome = readElements(file, head.rows, head.cols, matrix);
  if (outcome == RecordOutcome::noMemory) return GlobalsOutcome::noMemory;
  if (outcome != RecordOutcome::complete) return GlobalsOutcome::damaged;
  setFlags(*matrix, head.flags);
  // It is a global also where a local float hides it.
  if (Symbol* symbol = makeGlobalMatrix(head.name)) symbol->matrix->swapContents(*matrix);
  return GlobalsOutcome::complete;
}

GlobalsOutcome mergeRecord(BinaryFile& file, std::string& conflict) {
  RecordHead head;
  if (!readHead(file, head)) return GlobalsOutcome::damaged;
  if (!head.hasPayload()) return GlobalsOutcome::complete;
  if (head.name.empty()) {
    const auto bytes = payloadBytes(file, head);
    return bytes && file.skip(*bytes) ? GlobalsOutcome::complete : GlobalsOutcome::damaged;
  }
  if (!head.isFloat()) return mergeMatrix(file, head, conflict);
  double x;
  if (!file.readNumber(x)) return GlobalsOutcome::damaged;
  mergeFloat(head, x);
  return GlobalsOutcome::complete;
}

}  // namespace

std::int32_t globalsFileCount() {
  const NamePool& names = interpreter().names;
  return names.floatCount() + 1 + names.matrixCount();
}

bool writeGlobals(BinaryFile& file) {
  const InterpreterState& state = interpreter();
  if (!file.writeBytes(magic) || !file.writeInteger(globalsFileCount()) ||
      !file.writeInteger(state.displaySetting))
    return false;
  for (const Symbol* symbol = state.names.oldestGlobal(); symbol; symbol = symbol->newerGlobal)
    if (!writeVariable(file, *symbol)) return false;
  return file.flush();
}

GlobalsOutcome readGlobals(BinaryFile& file, std::string& conflict) {
  std::array<char, magic.size()> start;
  if (!file.readBytes(start) || start != magic) return GlobalsOutcome::notADataFile;
  FileHead head;
  if (!readFileHead(file, head) || !examineRecords(file, head.count))
    return GlobalsOutcome::damaged;
  if (!file.rewind() || !file.skip(magic.size()) || !readFileHead(file, head))
    return GlobalsOutcome::damaged;
  interpreter().displaySetting = head.displaySetting;
  for (std::int32_t i = 0; i < head.count && file.holds(1); ++i) {
    const GlobalsOutcome outcome = mergeRecord(file, conflict);
    if (outcome != GlobalsOutcome::complete) return outcome;
  }
  return GlobalsOutcome::complete;
}

}  // namespace vexa
