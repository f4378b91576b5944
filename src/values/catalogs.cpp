#include "values/catalogs.h"

#include <algorithm>
#include <array>
#include <string>

#include "interp/interpreter_state.h"
#include "interp/output.h"
#include "values/argument_readers.h"
#include "values/number_format.h"

namespace vexa {

namespace {

constexpr std::size_t scalarNameWidth = 20;
constexpr std::size_t matrixNameWidth = 36;
constexpr int orderWidth = 6;

// How the value of a scalar is written: "%13g", or "%20.16g" with more digits.
struct NumberStyle {
  int precision;
  int width;
};
constexpr NumberStyle shortNumbers{6, 13};
constexpr NumberStyle longNumbers{16, 20};

// Two blanks and a name, filled up or cut to a width.
std::string rowOf(std::string_view name, std::size_t width) {
  std::string row = "  ";
  row += name.substr(0, width);
  row.append(width - std::min(width, name.size()), ' ');
  return row;
}

std::string scalarRow(std::string_view name, double value, NumberStyle style) {
  std::array<char, generalNumberSize(longNumbers.precision, longNumbers.width)> text;
  std::string row = rowOf(name, scalarNameWidth);
  row.append(text.data(), formatGeneral(text, value, style.precision, style.width));
  return row;
}

std::string matrixRow(std::string_view name, const Matrix& matrix) {
  std::array<char, 24> text;
  std::string row = rowOf(name, matrixNameWidth);
  row.append(text.data(), formatInteger(text, matrix.rows(), orderWidth));
  row.append(text.data(), formatInteger(text, matrix.cols(), orderWidth));
  return row;
}

// One of the two lists; its heading is written before its first row.
class Catalog {
 public:
  Catalog(std::string_view kind, NumberStyle style) : m_kind(kind), m_style(style) {}

  void add(std::string_view name, const Matrix* matrix, double value) {
    if (m_empty) writeHeading();
    m_empty = false;
    writeOutput(matrix ? matrixRow(name, *matrix) : scalarRow(name, value, m_style), lineWhole);
  }

 private:
  void writeHeading() const {
    endOutputLine();
    writeOutput("        --- Catalog of " + m_kind + " Variables ---", lineTitle);
    writeOutput(" Variable name                Value      Nrow  Ncol", lineWhole);
  }

  std::string m_kind;
  NumberStyle m_style;
  bool m_empty = true;
};

// The preset globals stay out, and so do the companions that a factorisation keeps. These are told
// by their names, which no program can write: their tag may be that of any factorised matrix.
bool isListed(const Symbol& global) {
  return global.state != statePreset && !global.name().starts_with('#');
}

bool anyGlobals(const NamePool& names) {
  for (const Symbol* symbol = names.oldestGlobal(); symbol; symbol = symbol->newerGlobal)
    if (isListed(*symbol)) return true;
  return false;
}

// A local has no name yet while the arguments of its function are read.
void listLocals(const CallStack& calls, NumberStyle style) {
  Catalog catalog("Local", style);
  for (int i = static_cast<int>(calls.localsCount()) - 1; i >= calls.localsBase(); --i) {
    const LocalRecord& record = calls.local(i);
    if (record.name) catalog.add(record.name->name(), record.matrix, record.value);
  }
}

void listGlobals(const NamePool& names, NumberStyle style) {
  Catalog catalog("Global", style);
  for (const Symbol* symbol = names.oldestGlobal(); symbol; symbol = symbol->newerGlobal)
    if (isListed(*symbol)) catalog.add(symbol->name(), symbol->matrix.get(), symbol->value);
}

void writeCatalog(char option) {
  const InterpreterState& state = interpreter();
  if (state.currentFunction) {
    endOutputLine();
    writeOutput(" Catalog from function: " + std::string(state.currentFunction->name()), lineWhole);
    writeOutput(" =====================================", lineWhole);
  }
  const bool anyLocals = static_cast<int>(state.calls.localsCount()) > state.calls.localsBase();
  if (!anyLocals && !anyGlobals(state.names)) {
    writeOutput("\tEmpty catalog", lineWhole);
    return;
  }
  const NumberStyle style = option == 'H' ? longNumbers : shortNumbers;
  if (option != 'G') listLocals(state.calls, style);
  if (option != 'L') listGlobals(state.names, style);
  endOutputLine();
}

}  // namespace

double catBuiltin() {
  expectChar('(');
  char option = 'A';
  if (!acceptChar(')')) {
    option = readOption("GLAH", ErrorKey::invalidOption);
    expectChar(')');
  }
  writeCatalog(option);
  return noResult();
}

}  // namespace vexa
