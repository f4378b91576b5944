#include "values/number_format.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

#include "values/character_class.h"

namespace vexa {

namespace {

// One operation on doubles is one rounding; the exactness arguments below rest on that.
static_assert(FLT_EVAL_METHOD == 0 && std::numeric_limits<double>::is_iec559);

// The powers of ten that a double holds exactly: 10^22 = 2^22 * 5^22 and 5^22 < 2^53.
constexpr double exactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int largestExactPower = std::size(exactPowers) - 1;

constexpr double twoTo63 = 9223372036854775808.0;
constexpr double twoTo64 = 18446744073709551616.0;

constexpr int defaultPrecision = 6;
constexpr int largestFormatNumber = 255;  // of the width and the precision of a NumberFormat

// The longest text of a number that NumberFormat makes: "%.255f" of the largest double has 309
// digits, a point and 255 more.
constexpr std::size_t longestBody = 309 + 1 + largestFormatNumber + 1;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

//--- Writing ---------------------------------------------------------------------------------

char* writeDigits(char* out, std::uint32_t value) {
  return std::to_chars(out, out + 10, value).ptr;
}

// The leading decimal digits of a positive number: digits * 10^(exponent + 1 - count of digits).
struct LeadingDigits {
  std::uint32_t digits;
  int exponent;  // of the first digit
};

// Finds the first `precision` (1 to 9) digits of a, correctly rounded, with a few operations on
// doubles; nothing when these cannot tell how to round.
//
// a is brought to precision digits before the point by one multiplication with or division by an
// exact power of ten, so the scaled value is off by at most 2^-53 of itself, which is below 1.2e-7
// for values below 10^9. Its digits after the point decide the rounding unless they come near one
// half; "near" is 1e-6, far more than the error, and leaves ties to the exact routine.
std::optional<LeadingDigits> quickDigits(double a, int precision) {
  const int binaryExponent = static_cast<int>(std::bit_cast<std::uint64_t>(a) >> 52) - 1023;
  // floor(binaryExponent * log10(2)), since 1233/4096 is close enough to log10(2) wherever the
  // shift below is in range. The first digit stands there or one place higher.
  int exponent = (binaryExponent * 1233) >> 12;

  const double limit = exactPowers[precision];
  double scaled = 0.0;
  for (;; ++exponent) {
    const int shift = precision - 1 - exponent;
    if (shift > largestExactPower || shift < -largestExactPower) return std::nullopt;
    scaled = shift >= 0 ? a * exactPowers[shift] : a / exactPowers[-shift];
    if (scaled < limit) break;
  }

  auto digits = static_cast<std::uint32_t>(scaled);
  const double rest = scaled - static_cast<double>(digits);  // exact
  if (std::fabs(rest - 0.5) < 1e-6) return std::nullopt;
  if (rest > 0.5 && static_cast<double>(++digits) == limit) {
    digits /= 10;
    ++exponent;
  }
  return LeadingDigits{digits, exponent};
}

// Lays digits out as "%g" does: without trailing zeros, with an exponent when it is below -4 or
// not below the precision.
char* writeLeadingDigits(char* out, LeadingDigits number, int precision) {
  auto [digits, exponent] = number;
  int count = precision;
  while (digits % 10 == 0) {
    digits /= 10;
    --count;
  }
  char text[10];
  writeDigits(text, digits);

  if (exponent < -4 || exponent >= precision) {
    *out++ = text[0];
    if (count > 1) {
      *out++ = '.';
      out = std::copy(text + 1, text + count, out);
    }
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    const auto magnitude = static_cast<std::uint32_t>(exponent < 0 ? -exponent : exponent);
    if (magnitude < 10) *out++ = '0';
    return writeDigits(out, magnitude);
  }
  if (exponent < 0) {
    *out++ = '0';
    *out++ = '.';
    out = std::fill_n(out, -exponent - 1, '0');
    return std::copy(text, text + count, out);
  }
  const int whole = exponent + 1;
  if (count <= whole) {
    out = std::copy(text, text + count, out);
    return std::fill_n(out, whole - count, '0');
  }
  out = std::copy(text, text + whole, out);
  *out++ = '.';
  return std::copy(text + whole, text + count, out);
}

// "%.{precision}g" of x, for a precision of 1 or more and room for precision + 7 bytes.
char* writeGeneral(char* out, double x, int precision) {
  if (std::isnan(x)) return std::copy_n("nan", 3, out);
  if (std::signbit(x)) *out++ = '-';
  const double a = std::fabs(x);
  if (std::isinf(a)) return std::copy_n("inf", 3, out);
  if (a == 0.0) {
    *out++ = '0';
    return out;
  }
  if (precision <= 9) {
    // Most numbers that programs print are small and whole.
    if (a < exactPowers[precision]) {
      const auto whole = static_cast<std::uint32_t>(a);
      if (static_cast<double>(whole) == a) return writeDigits(out, whole);
    }
    if (const auto number = quickDigits(a, precision)) {
      return writeLeadingDigits(out, *number, precision);
    }
  }
  // All of the room but the place of the sign.
  return std::to_chars(out, out + precision + 6, a, std::chars_format::general, precision).ptr;
}

// Moves the `length` bytes at out to the right end of a field. Returns the length of the field.
std::size_t padLeft(char* out, std::size_t length, int width) {
  if (width <= 0 || length >= static_cast<std::size_t>(width)) return length;
  const std::size_t padding = static_cast<std::size_t>(width) - length;
  std::memmove(out + padding, out, length);
  std::memset(out, ' ', padding);
  return length + padding;
}

constexpr std::size_t defaultWidth = 12;

// Numbers below 10^5 with at most one decimal: six digits that "%g" writes in full. Ten times the
// number is rounded once, so when it comes out whole, that whole number over ten is its six-digit
// decimal. False for every other number.
bool formatShort(char* out, double x) {
  const double a = std::fabs(x);
  if (!(a < 1e5)) return false;
  const double scaled = a * 10.0;
  auto digits = static_cast<std::uint32_t>(scaled);
  if (static_cast<double>(digits) != scaled) return false;
  std::memset(out, ' ', defaultWidth);
  char* at = out + defaultWidth;
  const std::uint32_t tenths = digits % 10;
  digits /= 10;
  if (tenths != 0) {
    *--at = static_cast<char>('0' + tenths);
    *--at = '.';
  }
  do {
    *--at = static_cast<char>('0' + digits % 10);
    digits /= 10;
  } while (digits != 0);
  if (std::signbit(x)) *--at = '-';
  return true;
}

}  // namespace

std::size_t formatDefault(std::span<char> out, double x) {
  if (out.size() < defaultNumberSize) return 0;
  if (formatShort(out.data(), x)) return defaultWidth;
  out[0] = ' ';
  return 1 + formatGeneral(out.subspan(1), x, defaultPrecision, 11);
}

std::size_t formatGeneral(std::span<char> out, double x, int precision, int width) {
  if (out.size() < generalNumberSize(precision, width)) return 0;
  if (precision < 0) precision = defaultPrecision;
  const char* end = writeGeneral(out.data(), x, std::max(precision, 1));
  return padLeft(out.data(), static_cast<std::size_t>(end - out.data()), width);
}

std::size_t formatInteger(std::span<char> out, std::int64_t value, int width) {
  constexpr std::size_t longest = 20;  // "-9223372036854775808"
  if (out.size() < longest || (width > 0 && out.size() < static_cast<std::size_t>(width))) return 0;
  const char* end = std::to_chars(out.data(), out.data() + longest, value).ptr;
  return padLeft(out.data(), static_cast<std::size_t>(end - out.data()), width);
}

//--- Reading ---------------------------------------------------------------------------------

namespace {

// Whether a number that no double can hold is too large, not too small: by the place of its first
// digit that is not 0.
bool isAboveOne(std::string_view number) {
  const std::size_t letter = std::min(number.find_first_of("eE"), number.size());
  const std::string_view digits = number.substr(0, letter);
  const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
  const auto first = static_cast<std::int64_t>(digits.find_first_not_of("0."));
  std::int64_t exponent = 0;
  bool negative = false;
  for (std::size_t i = letter + 1; i < number.size(); ++i) {
    if (isDigit(number[i])) {
      exponent = std::min<std::int64_t>(exponent * 10 + (number[i] - '0'), 1'000'000'000);
    } else {
      negative = number[i] == '-';
    }
  }
  return point - first + (negative ? -exponent : exponent) > 0;
}

double parseAnyNumber(std::string_view text) {
  double value = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  return isAboveOne({text.data(), result.ptr}) ? std::numeric_limits<double>::infinity() : 0.0;
}

// The length of the number with which the text begins, 0 when there is none.
std::size_t numberLength(std::string_view text) {
  std::size_t at = 0;
  std::size_t digits = 0;
  const auto skipDigits = [&] {
    for (; at < text.size() && isDigit(text[at]); ++at) ++digits;
  };
  skipDigits();
  if (at < text.size() && text[at] == '.') {
    ++at;
    skipDigits();
  }
  if (digits == 0) return 0;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    ++at;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    skipDigits();
  }
  return at;
}

}  // namespace

double parseNumber(std::string_view digits) {
  // Most numbers of a program are a few digits, perhaps with a point. Up to 19 digits make a 64-bit
  // whole number; when that is at most 2^53 and the power of ten at most 10^22, both are exact
  // doubles, so that one division rounds once and gives the nearest double.
  const char* const end = digits.data() + digits.size();
  const char* p = digits.data();
  std::uint64_t mantissa = 0;
  for (; p != end && isDigit(*p); ++p) {
    mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
  }
  std::ptrdiff_t count = p - digits.data();
  std::ptrdiff_t scale = 0;
  if (p != end && *p == '.') {
    const char* const fraction = ++p;
    for (; p != end && isDigit(*p); ++p) {
      mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
    }
    scale = p - fraction;
    count += scale;
  }
  const bool hasExponent = p != end && (*p == 'e' || *p == 'E');
  if (!hasExponent && count <= 19 && mantissa <= (std::uint64_t{1} << 53)) {
    return static_cast<double>(mantissa) / exactPowers[scale];
  }
  return parseAnyNumber(digits);
}

std::optional<double> textToNumber(std::string_view text) {
  constexpr std::string_view blanks = " \t";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return std::nullopt;
  text = text.substr(first, text.find_last_not_of(blanks) + 1 - first);

  const bool negative = text[0] == '-';
  if (negative || text[0] == '+') text.remove_prefix(1);
  const std::size_t length = numberLength(text);
  if (length == 0 || length != text.size()) return std::nullopt;
  const double value = parseNumber(text);
  return negative ? -value : value;
}

double roundSignificant(double x, int digits) {
  if (!std::isfinite(x)) return x;
  digits = digits < 0 ? defaultPrecision : std::clamp(digits, 1, 17);  // 17 tell all doubles apart
  std::array<char, generalNumberSize(17, 0)> text;
  const char* end = writeGeneral(text.data(), x, digits);
  return *textToNumber({text.data(), end});
}

signed char truncateToByte(double x) {
  if (!(std::fabs(x) < twoTo63)) return 0;
  return static_cast<signed char>(static_cast<std::int64_t>(x) & 0xff);
}

//--- User formats ----------------------------------------------------------------------------

namespace {

void makeUpper(char* begin, char* end) { std::transform(begin, end, begin, upperCase); }

// A sign or base mark, then digits, in a field. Zeros go between the two, blanks around both.
void appendPadded(std::string& out, const NumberConversion& c, std::string_view lead,
                  std::string_view body, bool padWithZeros) {
  const std::size_t length = lead.size() + body.size();
  const auto width = static_cast<std::size_t>(c.width);
  const std::size_t padding = width > length ? width - length : 0;
  padWithZeros = padWithZeros && !c.left;
  if (!c.left && !padWithZeros) out.append(padding, ' ');
  out.append(lead);
  if (padWithZeros) out.append(padding, '0');
  out.append(body);
  if (c.left) out.append(padding, ' ');
}

std::string_view signText(const NumberConversion& c, bool negative) {
  return negative ? "-" : c.plus ? "+" : c.blank ? " " : "";
}

// The '#' form of "%g": the digits are not stripped of their zeros and there is always a point.
char* writeGeneralKeepingZeros(char* begin, char* limit, double a, int precision) {
  char* end = std::to_chars(begin, limit, a, std::chars_format::scientific, precision - 1).ptr;
  const char* letter = std::find(begin, end, 'e');
  int exponent = 0;
  std::from_chars(letter[1] == '+' ? letter + 2 : letter + 1, end, exponent);
  if (exponent < -4 || exponent >= precision) return end;
  return std::to_chars(begin, limit, a, std::chars_format::fixed, precision - 1 - exponent).ptr;
}

// The '#' flag wants a point in every number: behind the digits, before the exponent.
char* insertMissingPoint(char* begin, char* end, char exponentLetter) {
  if (std::find(begin, end, '.') != end) return end;
  char* place = std::find(begin, end, exponentLetter);
  std::copy_backward(place, end, end + 1);
  *place = '.';
  return end + 1;
}

void appendFloating(std::string& out, const NumberConversion& c, double x) {
  const bool upper = c.letter >= 'A' && c.letter <= 'Z';
  const char letter = lowerCase(c.letter);
  const std::string_view sign = signText(c, std::signbit(x) && !std::isnan(x));
  const double a = std::fabs(x);
  if (!std::isfinite(x)) {
    appendPadded(out, c, sign, std::isnan(x) ? (upper ? "NAN" : "nan") : (upper ? "INF" : "inf"),
                 false);
    return;
  }

  std::array<char, longestBody> body;
  char* const begin = body.data();
  char* const limit = begin + body.size() - 1;  // the last byte is for a missing point
  char* end = begin;
  const int precision = c.precision < 0 ? defaultPrecision : c.precision;
  std::string lead(sign);
  switch (letter) {
    case 'e':
      end = std::to_chars(begin, limit, a, std::chars_format::scientific, precision).ptr;
      break;
    case 'f':
      end = std::to_chars(begin, limit, a, std::chars_format::fixed, precision).ptr;
      break;
    case 'g':
      end = c.alternate ? writeGeneralKeepingZeros(begin, limit, a, std::max(precision, 1))
                        : writeGeneral(begin, a, std::max(precision, 1));
      break;
    default:  // 'a'
      lead += upper ? "0X" : "0x";
      end = c.precision < 0
                ? std::to_chars(begin, limit, a, std::chars_format::hex).ptr
                : std::to_chars(begin, limit, a, std::chars_format::hex, c.precision).ptr;
      break;
  }
  if (c.alternate) end = insertMissingPoint(begin, end, letter == 'a' ? 'p' : 'e');
  if (upper) makeUpper(begin, end);
  appendPadded(out, c, lead, {begin, end}, c.zeros);
}

void appendWhole(std::string& out, const NumberConversion& c, double x) {
  const bool isSigned = c.letter == 'd' || c.letter == 'i';
  if (!(x >= -twoTo63 && x < (isSigned ? twoTo63 : twoTo64))) {
    NumberConversion general = c;
    general.letter = 'g';
    general.precision = -1;
    general.alternate = false;
    appendFloating(out, general, x);
    return;
  }

  std::uint64_t value = x < 0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(x))
                              : static_cast<std::uint64_t>(x);
  std::string_view lead;
  if (isSigned) {
    const bool negative = static_cast<std::int64_t>(value) < 0;
    lead = signText(c, negative);
    if (negative) value = ~value + 1;
  }
  const int base = c.letter == 'o' ? 8 : c.letter == 'x' || c.letter == 'X' ? 16 : 10;
  if (c.alternate && base == 16 && value != 0) lead = c.letter == 'x' ? "0x" : "0X";

  // The precision is the least number of digits. "#" makes sure that an octal number begins with 0,
  // also where a precision of 0 would write nothing for the value 0.
  std::array<char, largestFormatNumber + 1> body;
  char digits[22];
  char* digitsEnd = value == 0 && c.precision == 0
                        ? digits
                        : std::to_chars(digits, std::end(digits), value, base).ptr;
  if (c.letter == 'X') makeUpper(digits, digitsEnd);
  const auto count = static_cast<int>(digitsEnd - digits);
  int zeros = std::max(c.precision - count, 0);
  if (c.alternate && base == 8 && zeros == 0 && (count == 0 || digits[0] != '0')) zeros = 1;
  char* end = std::copy(digits, digitsEnd, std::fill_n(body.data(), zeros, '0'));
  appendPadded(out, c, lead, {body.data(), end}, c.zeros && c.precision < 0);
}

// Reads a width or precision; false when it is above the limit.
bool readFormatNumber(std::string_view text, std::size_t& at, int& number) {
  number = 0;
  for (; at < text.size() && isDigit(text[at]); ++at) {
    number = number * 10 + (text[at] - '0');
    if (number > largestFormatNumber) return false;
  }
  return true;
}

// Reads the conversion whose percent sign stands before `at`.
std::optional<NumberConversion> readConversion(std::string_view text, std::size_t& at) {
  NumberConversion c;
  for (; at < text.size(); ++at) {
    bool* flag = text[at] == '-'   ? &c.left
                 : text[at] == '+' ? &c.plus
                 : text[at] == ' ' ? &c.blank
                 : text[at] == '#' ? &c.alternate
                 : text[at] == '0' ? &c.zeros
                                   : nullptr;
    if (!flag) break;
    *flag = true;
  }
  if (!readFormatNumber(text, at, c.width)) return std::nullopt;
  if (at < text.size() && text[at] == '.') {
    ++at;
    if (!readFormatNumber(text, at, c.precision)) return std::nullopt;
  }
  at = std::min(text.find_first_not_of("hlLqjzt", at), text.size());
  if (at == text.size() || std::string_view("diuoxXceEfFgGaA").find(text[at]) == text.npos) {
    return std::nullopt;
  }
  c.letter = text[at++];
  return c;
}

}  // namespace

std::optional<NumberFormat> NumberFormat::parse(std::string_view text) {
  NumberFormat format;
  for (std::size_t at = 0; at < text.size();) {
    const char c = text[at++];
    if (c != '%') {
      format.m_text += c;
    } else if (at < text.size() && text[at] == '%') {
      format.m_text += '%';
      ++at;
    } else {
      const auto conversion = readConversion(text, at);
      if (!conversion || format.m_conversion.letter != 0) return std::nullopt;
      format.m_conversion = *conversion;
      format.m_prefixLength = format.m_text.size();
    }
  }
  return format;
}

void NumberFormat::append(std::string& out, double x) const {
  const NumberConversion& c = m_conversion;
  out.append(m_text, 0, m_prefixLength);
  if (c.letter == 'c') {
    const char byte = static_cast<char>(truncateToByte(x));
    appendPadded(out, c, {}, {&byte, 1}, false);
  } else if (std::string_view("diuoxX").find(c.letter) != std::string_view::npos) {
    appendWhole(out, c, x);
  } else if (c.letter != 0) {
    appendFloating(out, c, x);
  }
  out.append(m_text, m_prefixLength);
}

}  // namespace vexa
