#pragma once

// Bytes of a drawing file, little-endian: one set of operations that writes what a variable holds,
// or reads into it, as the archive is open for the one or the other. So each class says once in
// which order its fields stand.
//
// The first failure stays, and from there on reading changes nothing: variables keep what they
// hold. A length or count is believed only as far as there are bytes behind it, so that time and
// memory stay in proportion to the file.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

enum class ArchiveError {
  none,
  endOfFile,      // the file ends early
  badLength,      // a length or count that cannot be
  badSchema,      // a class record of another version
  unknownClass,   // a class name that no figure has
  badIndex,       // a class or object index that refers to nothing
  tooManyCopies,  // entries repeated beyond any proportion to the file
};

// The message of an archive error, a sentence.
std::string_view archiveMessage(ArchiveError error);

class DrawingArchive {
 public:
  // Open for writing.
  DrawingArchive() = default;
  // Open for reading; the bytes are borrowed.
  explicit DrawingArchive(std::string_view bytes) : m_input(bytes), m_storing(false) {}

  bool storing() const { return m_storing; }
  bool failed() const { return m_error != ArchiveError::none; }
  ArchiveError error() const { return m_error; }
  void fail(ArchiveError error) {
    if (!failed()) m_error = error;
  }
  // Bytes not read yet.
  std::size_t remaining() const { return m_input.size() - m_position; }
  // What has been written.
  std::string takeOutput() { return std::move(m_output); }

  void byte(char& value);
  void halfWord(std::uint16_t& value);
  void word(std::int32_t& value);
  void word(std::uint32_t& value);
  void real(float& value);
  void real(double& value);
  // The characters alone, as many as `size` says; reading replaces them.
  void characters(std::string& text, std::size_t size);
  // One byte of length below 255; else 0xFF and 16 bits below 0xFFFE; else 0xFF, 0xFFFF, 32 bits.
  void text(std::string& text);
  // 16 bits below 0xFFFF; else 0xFFFF and 32 bits.
  void count(std::uint32_t& value);
  // `size` points, x before y. A negative size ends reading like an early end of the file.
  void points(std::vector<Point>& points, std::int32_t size);
  void font(FontDescription& font);

 private:
  template <class Unsigned>
  void transfer(Unsigned& value);
  std::uint32_t readTextLength();

  std::string m_output;
  std::string_view m_input;
  std::size_t m_position = 0;
  bool m_storing = true;
  ArchiveError m_error = ArchiveError::none;
};

}  // namespace vexa
