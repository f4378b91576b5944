#pragma once

// A file of little-endian numbers, written or read from front to back. Nothing here raises or shows
// anything; the callers do.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>

namespace vexa {

class BinaryFile {
 public:
  enum class Purpose { write, read };

  // Creates or empties a file for writing, or opens a regular file for reading. Null when that
  // cannot be done.
  static std::unique_ptr<BinaryFile> open(const std::string& name, Purpose purpose);
  // Takes over a stream that is open for the purpose and stands at its start.
  BinaryFile(std::FILE* stream, std::string name, Purpose purpose);

  const std::string& name() const { return m_name; }
  Purpose purpose() const { return m_purpose; }
  bool rewind();

  // False when the file could not take everything.
  bool writeBytes(std::span<const char> bytes);
  bool writeInteger(std::int32_t x);
  bool writeNumber(double x) { return writeNumbers({&x, 1}); }
  bool writeNumbers(std::span<const double> numbers);
  // Hands what has been written to the system.
  bool flush();

  // Whether so many bytes stand between the place of reading and the end of the file, which may
  // have grown since it was opened.
  bool holds(std::uint64_t bytes);
  // False, with the contents of the target unspecified, when the file ends too early.
  bool readBytes(std::span<char> bytes);
  bool readInteger(std::int32_t& x);
  bool readNumber(double& x) { return readNumbers({&x, 1}); }
  bool readNumbers(std::span<double> numbers);
  bool skip(std::uint64_t bytes);

 private:
  struct Closer {
    // What was written has been flushed, and its failure told, before.
    void operator()(std::FILE* stream) const { static_cast<void>(std::fclose(stream)); }
  };

  std::unique_ptr<std::FILE, Closer> m_stream;
  std::string m_name;
  Purpose m_purpose;
  std::uint64_t m_size = 0;   // of a file for reading, when last looked at
  std::uint64_t m_place = 0;  // of a file for reading
};

}  // namespace vexa
