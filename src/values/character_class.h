#pragma once

// What a byte may be in program text, and the case of letters. Letters, digits and punctuation are
// those of ASCII, whatever the locale.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace vexa {

enum CharacterClass : std::uint8_t {
  charBlank = 1,  // blank, tab, carriage return, line feed
  charLetter = 2,
  charDigit = 4,
  charNamePart = 8,   // may continue a name: letters, digits, _ # $
  charWordPart = 16,  // what the bracket scan passes over: as in a name, and "."
  charPunctuation = 32,
  charStructural = 64,  // [](){},;
  charLone = 128,       // punctuation that is a token by itself, whatever follows
};

inline constexpr std::array<std::uint8_t, 256> characterClasses = [] {
  std::array<std::uint8_t, 256> table{};
  const auto mark = [&table](unsigned char c, unsigned flags) {
    table[c] = static_cast<std::uint8_t>(table[c] | flags);
  };
  for (const char c : {' ', '\t', '\r', '\n'}) mark(static_cast<unsigned char>(c), charBlank);
  for (int c = 33; c < 127; ++c) {
    const auto byte = static_cast<unsigned char>(c);
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))
      mark(byte, charLetter | charNamePart | charWordPart);
    else if (c >= '0' && c <= '9')
      mark(byte, charDigit | charNamePart | charWordPart);
    else
      mark(byte, charPunctuation);
  }
  for (const char c : {'_', '#', '$'})
    mark(static_cast<unsigned char>(c), charNamePart | charWordPart);
  mark('.', charWordPart);
  for (const char c : {'[', ']', '(', ')', '{', '}', ',', ';'})
    mark(static_cast<unsigned char>(c), charStructural);
  for (const char c : {'(', ')', '[', ']', '{', '}', ',', ';', ':', '+', '-', '*', '^', '~', '?'})
    mark(static_cast<unsigned char>(c), charLone);
  return table;
}();

inline bool isCharacter(char c, unsigned flags) {
  return (characterClasses[static_cast<unsigned char>(c)] & flags) != 0;
}

constexpr char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char upperCase(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, lowerCase, lowerCase);
}

}  // namespace vexa
