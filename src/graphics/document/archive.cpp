#include "graphics/document/archive.h"

#include <algorithm>
#include <array>
#include <bit>

namespace vexa {

namespace {

constexpr std::uint8_t longText = 0xFF;
constexpr std::uint16_t wideText = 0xFFFE;  // texts of wide characters, which no drawing holds
constexpr std::uint16_t longerText = 0xFFFF;
constexpr std::uint16_t longCount = 0xFFFF;

}  // namespace

std::string_view archiveMessage(ArchiveError error) {
  switch (error) {
    case ArchiveError::none:
      return "";
    case ArchiveError::endOfFile:
      return "The file ends before its drawing is complete.";
    case ArchiveError::badLength:
      return "The file holds a length that no drawing has.";
    case ArchiveError::badSchema:
      return "The file was written by an incompatible version.";
    case ArchiveError::unknownClass:
      return "The file holds a figure of an unknown kind.";
    case ArchiveError::badIndex:
      return "The file refers to a figure that it does not hold.";
    case ArchiveError::tooManyCopies:
      return "The file repeats its figures too often.";
  }
  return "";
}

template <class Unsigned>
void DrawingArchive::transfer(Unsigned& value) {
  std::array<char, sizeof(Unsigned)> bytes;
  if (m_storing) {
    for (std::size_t i = 0; i < bytes.size(); ++i)
      bytes[i] = static_cast<char>(static_cast<std::uint8_t>(value >> (8 * i)));
    m_output.append(bytes.data(), bytes.size());
    return;
  }
  if (failed()) return;
  if (remaining() < bytes.size()) return fail(ArchiveError::endOfFile);
  value = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto part = static_cast<std::uint8_t>(m_input[m_position + i]);
    value = static_cast<Unsigned>(value | (Unsigned{part} << (8 * i)));
  }
  m_position += bytes.size();
}

void DrawingArchive::byte(char& value) {
  auto bits = static_cast<std::uint8_t>(value);
  transfer(bits);
  value = static_cast<char>(bits);
}

void DrawingArchive::halfWord(std::uint16_t& value) { transfer(value); }

void DrawingArchive::word(std::uint32_t& value) { transfer(value); }

void DrawingArchive::word(std::int32_t& value) {
  auto bits = static_cast<std::uint32_t>(value);
  transfer(bits);
  value = static_cast<std::int32_t>(bits);
}

// As bit patterns, so that a not-a-number keeps its bytes.
void DrawingArchive::real(float& value) {
  auto bits = std::bit_cast<std::uint32_t>(value);
  transfer(bits);
  value = std::bit_cast<float>(bits);
}

void DrawingArchive::real(double& value) {
  auto bits = std::bit_cast<std::uint64_t>(value);
  transfer(bits);
  value = std::bit_cast<double>(bits);
}

void DrawingArchive::characters(std::string& text, std::size_t size) {
  if (m_storing) {
    m_output.append(text, 0, size);
    return;
  }
  if (failed()) return;
  if (remaining() < size) return fail(ArchiveError::endOfFile);
  text.assign(m_input.substr(m_position, size));
  m_position += size;
}

std::uint32_t DrawingArchive::readTextLength() {
  char first = 0;
  byte(first);
  if (static_cast<std::uint8_t>(first) != longText) return static_cast<std::uint8_t>(first);
  std::uint16_t half = 0;
  halfWord(half);
  if (half == wideText) fail(ArchiveError::badLength);
  if (half != longerText) return half;
  std::uint32_t length = 0;
  word(length);
  return length;
}

void DrawingArchive::text(std::string& text) {
  if (!m_storing) return characters(text, readTextLength());
  auto length = static_cast<std::uint32_t>(std::min<std::size_t>(text.size(), 0xFFFFFFFF));
  auto first = static_cast<char>(std::min<std::uint32_t>(length, longText));
  byte(first);
  if (length >= longText) {
    auto half = static_cast<std::uint16_t>(length < wideText ? length : longerText);
    halfWord(half);
    if (length >= wideText) word(length);
  }
  characters(text, length);
}

void DrawingArchive::count(std::uint32_t& value) {
  auto half = static_cast<std::uint16_t>(std::min<std::uint32_t>(value, longCount));
  halfWord(half);
  if (half == longCount)
    word(value);
  else
    value = half;
}

void DrawingArchive::points(std::vector<Point>& points, std::int32_t size) {
  constexpr std::size_t pointSize = 8;
  if (!m_storing) {
    points.clear();
    if (failed()) return;
    if (size < 0 || static_cast<std::size_t>(size) > remaining() / pointSize)
      return fail(ArchiveError::endOfFile);
    points.resize(static_cast<std::size_t>(size));
  }
  for (Point& p : points) {
    word(p.x);
    word(p.y);
  }
}

void DrawingArchive::font(FontDescription& font) {
  for (std::int32_t* value :
       {&font.height, &font.width, &font.escapement, &font.orientation, &font.weight})
    word(*value);
  for (std::uint8_t* value :
       {&font.italic, &font.underline, &font.strikeOut, &font.charSet, &font.outPrecision,
        &font.clipPrecision, &font.quality, &font.pitchAndFamily})
    transfer(*value);
  for (char& c : font.faceName) byte(c);
}

}  // namespace vexa
