#include "values/printing.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>

#include "interp/interpreter_state.h"
#include "values/evaluator_parts.h"
#include "values/number_format.h"
#include "values/text_string.h"

namespace vexa {

namespace {

constexpr std::size_t numberedLineWidth = 78;
constexpr std::size_t rowNumberWidth = 6;
constexpr int numberedCellWidth = 11;
constexpr int generalPrecision = 6;

// Asks for an interrupt every few hundred rows of a matrix.
void pollEachRows(int row) {
  if (row % 256 == 0) pollInterrupt();
}

void appendDefault(std::string& out, double x) {
  std::array<char, defaultNumberSize> text;
  out.append(text.data(), formatDefault(text, x));
}

void appendGeneral(std::string& out, double x, int width) {
  std::array<char, generalNumberSize(generalPrecision, numberedCellWidth)> text;
  out.append(text.data(), formatGeneral(text, x, generalPrecision, width));
}

void appendRight(std::string& out, std::string_view text, std::size_t width) {
  if (text.size() < width) out.append(width - text.size(), ' ');
  out += text;
}

void appendNumbering(std::string& out, int number, std::size_t width) {
  std::array<char, 12> digits;
  const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  appendRight(out, {digits.data(), static_cast<std::size_t>(end - digits.data())}, width);
}

// Reads and writes the items of one call.
class ItemPrinter {
 public:
  ItemPrinter(TextSink* sink, PrintStyle style)
      : m_state(interpreter()), m_scanner(m_state.scanner), m_sink(sink), m_style(style) {}

  void printAll();

 private:
  // What kind of item was read decides which fault a missing comma is.
  enum class Item { text, expression };

  // The output document can change with every expression that is evaluated.
  TextSink& sink() { return m_sink ? *m_sink : outputSink(); }
  bool separated(Item item);
  const Matrix* namedMatrix() const;
  bool printItem();
  bool printScalar();
  bool printMarked();
  bool printNamed(const Matrix& m);
  bool printPercent();
  bool printLiteral();
  void number(double x);
  void matrix(const Matrix& m);
  void rows(const Matrix& m);
  void numberedRows(const Matrix& m);
  void complexValues(const Matrix& m);
  void appendCell(double x, bool first);
  void appendNumberedCell(double x);
  void appendComplex(double re, double im, bool first);
  void dropFormat();

  InterpreterState& m_state;
  const Scanner& m_scanner;
  TextSink* m_sink;
  PrintStyle m_style;
  bool m_character = false;              // the next number is written as a byte
  std::optional<NumberFormat> m_format;  // pending for the next number
  std::string m_line;
};

void ItemPrinter::printAll() {
  getToken();
  while (m_scanner.tokenChar != ')' && printItem())
    if (m_scanner.tokenChar == ',') getToken();
  // What the items evaluated has been used.
  m_state.noEcho = false;
}

// Whether `,` or `)` follows an item, which is written only then.
bool ItemPrinter::separated(Item item) {
  const unsigned char c = m_scanner.tokenChar;
  if (c == ',' || c == ')') [[likely]]
    return true;
  if (item == Item::expression) {
    raiseError(ErrorKey::invalidData);
  } else if (c == ';' || m_scanner.atEnd()) {
    rescanToken();
    raiseError(ErrorKey::parenthesisExpected);
  } else {
    raiseError(ErrorKey::commaExpected);
  }
  return false;
}

// Writes the item that begins with the current token; the token after it is current then. False
// after a fault that did not unwind.
bool ItemPrinter::printItem() {
  switch (m_scanner.tokenType) {
    case TOKEN_STRING:
      return printLiteral();
    case TOKEN_NAME: {
      if (m_scanner.isMark()) return printMarked();
      if (m_scanner.tokenChar == '%') return printPercent();
      const Matrix* named = namedMatrix();
      if (!named || nextCharacter() == '[') return printScalar();
      return printNamed(*named);
    }
    case TOKEN_DELIMITER:
    case TOKEN_BLOCK:
      switch (m_scanner.tokenChar) {
        case '^':
          getToken();
          if (!separated(Item::text)) return false;
          sink().write({}, lineWhole);
          return true;
        case '+':
        case '-':
        case '(':
          return printScalar();
        case ',':
          raiseError(ErrorKey::commaExpected);
          return false;
        default:
          return separated(Item::text);
      }
    default:
      return printScalar();
  }
}

// The matrix that the current token names, or null.
const Matrix* ItemPrinter::namedMatrix() const {
  return m_scanner.tokenType == TOKEN_NAME && m_scanner.symbol ? matrixOf(*m_scanner.symbol)
                                                               : nullptr;
}

bool ItemPrinter::printScalar() {
  const double x = evalCondition();
  if (!separated(Item::expression)) return false;
  number(x);
  return true;
}

bool ItemPrinter::printMarked() {
  Value value;
  evalMatrixExpression(value, static_cast<char>(m_scanner.tokenChar), true);
  const Item item = endsExpression(m_scanner.tokenChar) ? Item::text : Item::expression;
  const bool whole = separated(item) && value.matrix;
  if (whole) matrix(*value.matrix);
  freeOperand(value);
  return whole;
}

bool ItemPrinter::printNamed(const Matrix& m) {
  getToken();
  if (!separated(Item::text)) return false;
  matrix(m);
  return true;
}

// `%` alone asks for a byte; before a string variable it is the mark of the string.
bool ItemPrinter::printPercent() {
  getToken();
  const Matrix* named = namedMatrix();
  if (named && named->isString()) return printNamed(*named);
  m_character = true;
  return separated(Item::text);
}

// A text that begins with `%` waits for its number; any other is written.
bool ItemPrinter::printLiteral() {
  const std::string_view text = m_scanner.tokenText;
  const bool isFormat = text.starts_with('%');
  if (isFormat) {
    m_format = NumberFormat::parse(text);
    if (!m_format) {
      raiseError(ErrorKey::invalidData);
      return false;
    }
  }
  // Only another literal would overwrite the text, and that is a fault.
  getToken();
  if (!separated(Item::text)) return false;
  if (!isFormat && !text.empty()) sink().write(text, lineAppend);
  return true;
}

void ItemPrinter::number(double x) {
  if (!m_character && !m_format) [[likely]] {
    printNumber(sink(), x);
    return;
  }
  m_line.clear();
  appendCell(x, true);
  sink().write(m_line, lineAppend);
  dropFormat();
}

void ItemPrinter::dropFormat() {
  m_character = false;
  m_format.reset();
}

// One element of a row; a pending format joins the elements by one blank.
void ItemPrinter::appendCell(double x, bool first) {
  if (m_character) {
    m_line += static_cast<char>(truncateToByte(x));
  } else if (m_format) {
    if (!first) m_line += ' ';
    m_format->append(m_line, x);
  } else {
    appendDefault(m_line, x);
  }
}

void ItemPrinter::matrix(const Matrix& m) {
  if (m.isString()) {
    sink().write(loadText(m), lineAppend);
    return;  // a pending format waits for a number
  }
  if (m_style.complexValues && !m_character)
    complexValues(m);
  else if (m_style.alternate)
    numberedRows(m);
  else if (m_character || m_format)
    rows(m);
  else
    printMatrix(sink(), m);
  dropFormat();
}

void ItemPrinter::rows(const Matrix& m) {
  for (int i = 1; i <= m.rows(); ++i) {
    pollEachRows(i);
    m_line.clear();
    for (int j = 1; j <= m.cols(); ++j) appendCell(m.at(i, j), j == 1);
    sink().write(m_line, lineWhole);
  }
}

void ItemPrinter::appendNumberedCell(double x) {
  if (m_character || m_format)
    appendCell(x, true);
  else
    appendGeneral(m_line, x, numberedCellWidth);
}

// Groups of columns that fit a line, each below a heading of column numbers.
void ItemPrinter::numberedRows(const Matrix& m) {
  std::size_t width = m_format ? 0 : numberedCellWidth;
  for (int i = 1; i <= m.rows(); ++i) {
    pollEachRows(i);
    for (int j = 1; j <= m.cols(); ++j) {
      m_line.clear();
      appendNumberedCell(m.at(i, j));
      width = std::max(width, m_line.size());
    }
  }
  const int group = static_cast<int>(
      std::max<std::size_t>(1, (numberedLineWidth - rowNumberWidth) / (width + 1)));

  std::string line;
  for (int first = 1; first <= m.cols(); first += group) {
    const int last = first + std::min(group - 1, m.cols() - first);
    if (first > 1) sink().write({}, lineWhole);
    line.assign(rowNumberWidth, ' ');
    for (int j = first; j <= last; ++j) {
      line += ' ';
      appendNumbering(line, j, width);
    }
    sink().write(line, lineWhole);
    for (int i = 1; i <= m.rows(); ++i) {
      pollEachRows(i);
      line.clear();
      appendNumbering(line, i, rowNumberWidth);
      for (int j = first; j <= last; ++j) {
        m_line.clear();
        appendNumberedCell(m.at(i, j));
        line += ' ';
        appendRight(line, m_line, width);
      }
      sink().write(line, lineWhole);
    }
  }
}

void ItemPrinter::appendComplex(double re, double im, bool first) {
  const std::string_view sign = im < 0 ? " - " : " + ";
  if (m_format) {
    if (!first) m_line += ' ';
    m_format->append(m_line, re);
    m_line += sign;
    m_format->append(m_line, std::fabs(im));
  } else {
    appendDefault(m_line, re);
    m_line += sign;
    appendGeneral(m_line, std::fabs(im), 0);
  }
  m_line += 'i';
}

// A single value continues the current line, a list takes a line for each row.
void ItemPrinter::complexValues(const Matrix& m) {
  if (m.cols() % 2 != 0) {
    raiseError(ErrorKey::ordersIncompatible);
    return;
  }
  const char mode = m.size() == 2 ? lineAppend : lineWhole;
  for (int i = 1; i <= m.rows(); ++i) {
    pollEachRows(i);
    m_line.clear();
    for (int j = 1; j < m.cols(); j += 2) appendComplex(m.at(i, j), m.at(i, j + 1), j == 1);
    sink().write(m_line, mode);
  }
}

}  // namespace

void printNumber(TextSink& sink, double x) {
  std::array<char, defaultNumberSize> text;
  sink.write({text.data(), formatDefault(text, x)}, lineAppend);
}

void printMatrix(TextSink& sink, const Matrix& matrix) {
  if (matrix.isString()) {
    sink.write(loadText(matrix), lineAppend);
    return;
  }
  std::string line;
  for (int i = 1; i <= matrix.rows(); ++i) {
    pollEachRows(i);
    line.clear();
    for (int j = 1; j <= matrix.cols(); ++j) appendDefault(line, matrix.at(i, j));
    sink.write(line, lineWhole);
  }
}

void printAutomatically(const Matrix& matrix) {
  InterpreterState& state = interpreter();
  if (state.matrixPrintLimit <= 0) return;
  --state.matrixPrintLimit;
  printMatrix(outputSink(), matrix);
}

void printItems(TextSink* sink, PrintStyle style) { ItemPrinter(sink, style).printAll(); }

}  // namespace vexa
