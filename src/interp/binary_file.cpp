#include "interp/binary_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

namespace vexa {

namespace {

constexpr int permissions = 0666;

// Opens a regular file only: a pipe would have no end to measure, a directory no bytes.
std::FILE* openToRead(const char* name) {
  const int descriptor = ::open(name, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  struct stat status {};
  std::FILE* stream = nullptr;
  if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))
    stream = ::fdopen(descriptor, "rb");
  if (!stream) ::close(descriptor);
  return stream;
}

// Without waiting for a pipe's reader.
std::FILE* openToWrite(const char* name) {
  const int descriptor =
      ::open(name, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, permissions);
  if (descriptor < 0) return nullptr;
  std::FILE* stream = ::fdopen(descriptor, "wb");
  if (!stream) ::close(descriptor);
  return stream;
}

std::uint64_t sizeOf(std::FILE* stream) {
  struct stat status {};
  if (::fstat(::fileno(stream), &status) != 0 || status.st_size < 0) return 0;
  return static_cast<std::uint64_t>(status.st_size);
}

template <class Number>
void reverseBytes(Number& x) {
  std::array<char, sizeof x> bytes;
  std::memcpy(bytes.data(), &x, sizeof x);
  std::ranges::reverse(bytes);
  std::memcpy(&x, bytes.data(), sizeof x);
}

constexpr bool littleEndian = std::endian::native == std::endian::little;

}  // namespace

std::unique_ptr<BinaryFile> BinaryFile::open(const std::string& name, Purpose purpose) {
  // A name with a NUL inside would open the file of its first part.
  if (name.find('\0') != std::string::npos) return nullptr;
  std::FILE* stream =
      purpose == Purpose::write ? openToWrite(name.c_str()) : openToRead(name.c_str());
  return stream ? std::make_unique<BinaryFile>(stream, name, purpose) : nullptr;
}

BinaryFile::BinaryFile(std::FILE* stream, std::string name, Purpose purpose)
    : m_stream(stream), m_name(std::move(name)), m_purpose(purpose) {
  if (purpose == Purpose::read) m_size = sizeOf(stream);
}

bool BinaryFile::rewind() {
  m_place = 0;
  // What was read ahead is dropped: the file may have been written anew.
  if (std::fflush(m_stream.get()) != 0) return false;
  return std::fseek(m_stream.get(), 0, SEEK_SET) == 0;
}

bool BinaryFile::holds(std::uint64_t bytes) {
  const auto inSize = [&] { return m_place <= m_size && bytes <= m_size - m_place; };
  if (inSize()) return true;
  m_size = sizeOf(m_stream.get());
  return inSize();
}

bool BinaryFile::writeBytes(std::span<const char> bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), m_stream.get()) == bytes.size();
}

bool BinaryFile::writeInteger(std::int32_t x) {
  if constexpr (!littleEndian) reverseBytes(x);
  std::array<char, sizeof x> bytes;
  std::memcpy(bytes.data(), &x, sizeof x);
  return writeBytes(bytes);
}

bool BinaryFile::writeNumbers(std::span<const double> numbers) {
  if constexpr (littleEndian)
    return writeBytes({reinterpret_cast<const char*>(numbers.data()), numbers.size_bytes()});
  return std::ranges::all_of(numbers, [this](double x) {
    reverseBytes(x);
    return writeBytes({reinterpret_cast<const char*>(&x), sizeof x});
  });
}

bool BinaryFile::flush() { return std::fflush(m_stream.get()) == 0; }

bool BinaryFile::readBytes(std::span<char> bytes) {
  if (!holds(bytes.size())) return false;
  const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), m_stream.get());
  m_place += count;
  return count == bytes.size();
}

bool BinaryFile::readInteger(std::int32_t& x) {
  std::array<char, sizeof x> bytes;
  if (!readBytes(bytes)) return false;
  std::memcpy(&x, bytes.data(), sizeof x);
  if constexpr (!littleEndian) reverseBytes(x);
  return true;
}

bool BinaryFile::readNumbers(std::span<double> numbers) {
  if (!readBytes({reinterpret_cast<char*>(numbers.data()), numbers.size_bytes()})) return false;
  if constexpr (!littleEndian)
    for (double& x : numbers) reverseBytes(x);
  return true;
}

bool BinaryFile::skip(std::uint64_t bytes) {
  if (!holds(bytes)) return false;
  if (::fseeko(m_stream.get(), static_cast<off_t>(bytes), SEEK_CUR) != 0) return false;
  m_place += bytes;
  return true;
}

}  // namespace vexa
