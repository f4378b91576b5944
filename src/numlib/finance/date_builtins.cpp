#include <cmath>
#include <optional>
#include <string>
#include <string_view>

#include "interp/interpreter_state.h"
#include "numlib/finance/finance_builtins.h"
#include "numlib/finance/serial_date.h"
#include "values/numeric_arguments.h"
#include "values/text_string.h"

namespace vexa {

namespace {

// A part of a date without its decimals; what no date can hold becomes a part that none has.
int datePart(double x) {
  constexpr double beyondAnyPart = 1e6;
  return std::fabs(x) < beyondAnyPart ? static_cast<int>(x) : -1;
}

double serialOrFault(const std::optional<double>& serial) {
  if (!serial) raiseError(ErrorKey::invalidDate);
  return serial.value_or(0.0);
}

// Whether the next argument is a literal or a string variable; it stays unread.
bool textFollows() {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  bool text = scanner.tokenType == TOKEN_STRING ||
              (scanner.tokenType == TOKEN_NAME && scanner.tokenChar == '%');
  if (!text && scanner.tokenType == TOKEN_NAME) {
    const Matrix* matrix = findMatrix(scanner.tokenText);
    text = matrix && matrix->isString();
  }
  rescanToken();
  return text;
}

double textToSerial() {
  const std::string text = readText();
  expectChar(')');
  return serialOrFault(serialOfText(text));
}

double partsToSerial() {
  DateTime date;
  date.year = datePart(evalScalarArg());
  if (!moreArguments()) {
    raiseError(ErrorKey::stringExpected);
    return 0.0;
  }
  date.month = datePart(evalScalarArg());
  expectChar(',');
  date.day = datePart(evalScalarArg());
  bool more = moreArguments();
  if (more) date.hour = datePart(evalScalarArg());
  more = more && moreArguments();
  if (more) date.minute = datePart(evalScalarArg());
  more = more && moreArguments();
  if (more) {
    date.second = evalScalarArg();
    expectChar(')');
  }
  return serialOrFault(serialOf(date));
}

double serialToRow(double serial) {
  const std::optional<DateTime> date = dateOf(serial, TimeStep::millisecond);
  if (!date) {
    raiseError(ErrorKey::invalidDate);
    return 0.0;
  }
  if (Matrix* row = newTempMatrix(1, 7)) {
    const double parts[] = {static_cast<double>(date->year),   static_cast<double>(date->month),
                            static_cast<double>(date->day),    static_cast<double>(date->hour),
                            static_cast<double>(date->minute), date->second,
                            static_cast<double>(date->weekday)};
    for (int j = 1; j <= 7; ++j) row->at(1, j) = parts[j - 1];
    setBuiltinResult(row);
  }
  return 0.0;
}

double serialToText(double serial) {
  acceptChar('%');
  const std::string name = readResultName();
  DateOrder order = DateOrder::yearMonthDay;
  for (WordReader words({"eu", "us"}); words.next();) {
    if (order != DateOrder::yearMonthDay) raiseError(ErrorKey::invalidData);
    order = words.index() == 0 ? DateOrder::dayMonthYear : DateOrder::monthDayYear;
  }
  if (isSerial(serial))
    assignText(name, textOfSerial(serial, order));
  else
    raiseError(ErrorKey::invalidDate);
  return noResult();
}

}  // namespace

double dateBuiltin() {
  const bool toSerial = interpreter().currentBuiltin == builtinCode("date2serial");
  expectChar('(');
  if (toSerial) return textFollows() ? textToSerial() : partsToSerial();
  const double serial = evalScalarArg();
  return moreArguments() ? serialToText(serial) : serialToRow(serial);
}

}  // namespace vexa
