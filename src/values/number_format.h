#pragma once

// Numbers as text, and text as numbers.
//
// Everything here follows the "C" rules whatever the locale of the process: the decimal point is a
// point. The printing functions give, byte for byte, what printf gives for the same conversion,
// with one exception: not-a-number has no sign, so it is "nan" where printf may say "-nan".

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vexa {

// The room that formatDefault needs: a blank and the longest "%11g", "-1.23457e+100".
inline constexpr std::size_t defaultNumberSize = 14;

// Writes x as " %11g", the form in which a program prints a number when it names no format.
// Returns the number of bytes, 12 to defaultNumberSize. There is no terminating NUL. A span
// shorter than defaultNumberSize is refused: nothing is written and the result is 0.
std::size_t formatDefault(std::span<char> out, double x);

// The room that formatGeneral needs for a precision and a width, as given to it.
constexpr std::size_t generalNumberSize(int precision, int width) {
  // Sign, point, four leading zeros ("0.0001") or "e-308" beside the digits: 7 bytes at most.
  const auto digits = static_cast<std::size_t>(precision < 0 ? 6 : precision == 0 ? 1 : precision);
  const auto padded = static_cast<std::size_t>(width < 0 ? 0 : width);
  return digits + 7 > padded ? digits + 7 : padded;
}

// Writes x as "%{width}.{precision}g" and returns the number of bytes. A negative precision means 6
// and a precision of 0 means 1, as in printf; a width of 0 or less means no padding. A span shorter
// than generalNumberSize(precision, width) is refused: nothing is written and the result is 0.
std::size_t formatGeneral(std::span<char> out, double x, int precision, int width);

// Writes value as "%{width}d" and returns the number of bytes; 0, with nothing written, when the
// span holds fewer than max(20, width) bytes.
std::size_t formatInteger(std::span<char> out, std::int64_t value, int width);

// The value of a program's number. The text is what the scanner accepts: digits with at most one
// point ("5." and ".5" too), then perhaps an exponent letter and a sign. An exponent without digits
// counts for nothing, so "1E" and "1e+" are 1. The nearest double is returned, infinity beyond the
// largest, zero or a denormal number below the smallest. What follows the number is ignored.
double parseNumber(std::string_view digits);

// The number that a text holds: blanks, perhaps a sign, one number as a program would write it,
// blanks. Nothing for any other text ("", "1,5", "0x10", "nan", "- 1").
std::optional<double> textToNumber(std::string_view text);

// x rounded to a number of significant digits: written with "%.{digits}g" and read back, so that 0
// digits count as 1 and a negative number of digits as 6. Not-a-number and infinities stay.
double roundSignificant(double x, int digits);

// x truncated to a signed byte, as the conversion "%c" takes it: toward zero, then the low eight
// bits. Not-a-number and values beyond 64 bits give 0.
signed char truncateToByte(double x);

// What stands between the percent sign and the letter of a conversion, and the letter.
struct NumberConversion {
  char letter = 0;  // 0: the text has no conversion
  int width = 0;
  int precision = -1;      // -1: none given
  bool left = false;       // flag -
  bool plus = false;       // flag +
  bool blank = false;      // flag blank
  bool alternate = false;  // flag #
  bool zeros = false;      // flag 0
};

// A format text that a program gives for its next number, such as "%8.3f mm": plain text with "%%"
// for a percent sign and at most one conversion
//
//   % {flag} [width] [.precision] {length letter} letter
//
// flags: - + blank # 0. Width and precision: at most 255. Length letters h l L q j z t: ignored,
// since every value is a double. Letters:
//
//   d i               the value truncated to a signed 64-bit number
//   u o x X           the value truncated to 64 bits, a negative one as its two's complement
//   c                 the value truncated to a signed byte, written as that byte
//   e E f F g G a A   the value itself
//
// A value that 64 bits cannot hold, and not-a-number, are written by the letters of whole numbers
// as with g in the same width and with the same flags but #.
class NumberFormat {
 public:
  // Takes the text apart. Nothing when it holds a second conversion, another letter, "*", an
  // unfinished conversion, or a width or precision above 255.
  static std::optional<NumberFormat> parse(std::string_view text);

  // Adds the text to out, x standing where the conversion stood. Without a conversion x is not
  // written.
  void append(std::string& out, double x) const;

 private:
  NumberFormat() = default;

  std::string m_text;              // the plain text, "%%" already one "%"
  std::size_t m_prefixLength = 0;  // how much of it stands before the conversion
  NumberConversion m_conversion;
};

}  // namespace vexa
