#include "graphics/surfaces/drawn_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "graphics/surfaces/font_widths.h"

namespace vexa {

namespace {

// Characters of the codes 0x80 to 0x9F of Windows-1252; 0 where there is none.
constexpr std::array<char16_t, 32> windowsCharacters = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,       //
    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

constexpr char32_t characterOf(unsigned char windowsCode) {
  if (windowsCode < 0x80 || windowsCode >= 0xA0) return windowsCode;
  return windowsCharacters[windowsCode - 0x80U];
}

constexpr bool isDrawn(char32_t c) {
  return c >= 0x20 && (c < 0x7F || c >= 0xA0) && c != 0xFFFE && c != 0xFFFF;
}

// The character at `at`, which moves behind it; nothing for bytes that are no UTF-8: cut short,
// longer than they need be, surrogates, beyond the last character.
std::optional<char32_t> readUtf8(std::string_view bytes, std::size_t& at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char first = byte(at);
  if (first < 0x80) return bytes[at++];
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC0 || first >= 0xF8 || length > bytes.size() - at) return std::nullopt;
  char32_t character = first & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0U) != 0x80U) return std::nullopt;
    character = (character << 6) | (byte(at + i) & 0x3FU);
  }
  constexpr std::array<char32_t, 5> lowest = {0, 0, 0x80, 0x800, 0x10000};
  if (character < lowest[length] || character > 0x10FFFF) return std::nullopt;
  if (character >= 0xD800 && character < 0xE000) return std::nullopt;
  at += length;
  return character;
}

std::optional<std::u32string> decodeUtf8(std::string_view bytes) {
  std::u32string text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    const std::optional<char32_t> character = readUtf8(bytes, at);
    if (!character) return std::nullopt;
    text += *character;
  }
  return text;
}

std::string lowered(std::string_view text) {
  std::string result(text);
  for (char& c : result)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return result;
}

// In 1/2048 of the em.
struct FaceShape {
  int cellHeight, ascent, averageWidth;
  const GlyphWidths* regular;  // null where all characters are as wide as the average
  const GlyphWidths* bold;
};

constexpr double unitsPerEm = 2048;
constexpr int unknownWidth = 1024;
constexpr std::array<FaceShape, 3> faceShapes = {{
    {2268, 1825, 821, &timesWidths, &timesBoldWidths},
    {2288, 1854, 904, &arialWidths, &arialBoldWidths},
    {2320, 1705, 1229, nullptr, nullptr},
}};

const FaceShape& shapeOf(const FontDescription& font) {
  return faceShapes[static_cast<std::size_t>(familyOf(font))];
}

int widthOf(const FaceShape& shape, bool bold, char32_t character) {
  if (!shape.regular) return shape.averageWidth;
  const GlyphWidths& widths = bold ? *shape.bold : *shape.regular;
  if (character >= firstTableCode && (character < 0x80 || character >= 0xA0) && character < 0x100)
    return widths[character - firstTableCode];
  const auto* const found =
      std::find(windowsCharacters.begin(), windowsCharacters.end(), character);
  if (character == 0 || found == windowsCharacters.end()) return unknownWidth;
  const auto row = static_cast<std::size_t>(found - windowsCharacters.begin());
  return widths[0x80 - firstTableCode + row];
}

std::int32_t cellHeightOrDefault(const FontDescription& font) {
  return font.height == 0 ? FontDescription{}.height : font.height;
}

}  // namespace

std::u32string decodeDrawnText(std::string_view bytes) {
  std::optional<std::u32string> text = decodeUtf8(bytes);
  if (!text) {
    text.emplace();
    for (const char byte : bytes) *text += characterOf(static_cast<unsigned char>(byte));
  }
  std::replace_if(
      text->begin(), text->end(), [](char32_t c) { return !isDrawn(c); }, U' ');
  return std::move(*text);
}

std::string toUtf8(std::u32string_view text) {
  std::string bytes;
  const auto append = [&](char32_t byte) { bytes += static_cast<char>(byte); };
  for (const char32_t c : text) {
    if (c < 0x80) {
      append(c);
      continue;
    }
    const int tails = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr std::array<char32_t, 4> leads = {0, 0xC0, 0xE0, 0xF0};
    append(leads[static_cast<std::size_t>(tails)] | c >> (6 * tails));
    for (int i = tails - 1; i >= 0; --i) append(0x80U | (c >> (6 * i) & 0x3FU));
  }
  return bytes;
}

std::u16string toUtf16(std::u32string_view text) {
  std::u16string units;
  for (const char32_t c : text) {
    if (c < 0x10000) {
      units += static_cast<char16_t>(c);
    } else {
      units += static_cast<char16_t>(0xD7C0U + (c >> 10));
      units += static_cast<char16_t>(0xDC00U + (c & 0x3FFU));
    }
  }
  return units;
}

FontFamily familyOf(const FontDescription& font) {
  const std::string face = lowered(font.face());
  const auto contains = [&](std::string_view part) { return face.find(part) != std::string::npos; };
  if (contains("courier") || contains("mono") || contains("consol")) return FontFamily::courier;
  for (const std::string_view part : {"arial", "helvetica", "sans", "verdana", "calibri"})
    if (contains(part)) return FontFamily::arial;
  return FontFamily::times;
}

bool isBold(const FontDescription& font) { return font.weight >= 600; }

FontMetrics metricsOf(const FontDescription& font) {
  const FaceShape& shape = shapeOf(font);
  const double height = cellHeightOrDefault(font);
  FontMetrics metrics{};
  metrics.height = height > 0 ? height : -height * shape.cellHeight / unitsPerEm;
  metrics.emSize = metrics.height * unitsPerEm / shape.cellHeight;
  metrics.ascent = metrics.height * shape.ascent / shape.cellHeight;
  if (font.width != 0)
    metrics.stretch = std::abs(static_cast<double>(font.width)) * unitsPerEm /
                      (shape.averageWidth * metrics.emSize);
  else
    metrics.stretch = 1;
  return metrics;
}

double advanceOf(const FontDescription& font, char32_t character) {
  const FontMetrics metrics = metricsOf(font);
  return widthOf(shapeOf(font), isBold(font), character) * metrics.emSize * metrics.stretch /
         unitsPerEm;
}

TextExtent textExtent(const FontDescription& font, std::string_view bytes) {
  const FontMetrics metrics = metricsOf(font);
  const FaceShape& shape = shapeOf(font);
  double sum = 0;
  for (const char32_t c : decodeDrawnText(bytes)) sum += widthOf(shape, isBold(font), c);
  const double width = sum * metrics.height / shape.cellHeight * metrics.stretch;
  constexpr double most = 2147483647;
  return {static_cast<std::int32_t>(std::min(width + 0.5, most)),
          static_cast<std::int32_t>(std::min(metrics.height + 0.5, most))};
}

}  // namespace vexa
