#include "interp/data_files.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace vexa {

namespace {

constexpr int largestFileTag = 255;

RecordOutcome readTextPayload(BinaryFile& file, std::int32_t length, std::string& text) {
  if (length < 1) return RecordOutcome::damaged;
  if (length > longestRecordText) return RecordOutcome::tooLong;
  text.resize(static_cast<std::size_t>(length));
  if (!file.readBytes(text)) return RecordOutcome::damaged;
  // The NUL stands at the end and nowhere else.
  if (text.find('\0') != text.size() - 1) return RecordOutcome::damaged;
  text.pop_back();
  return RecordOutcome::complete;
}

RecordOutcome readMatrixPayload(BinaryFile& file, std::int32_t rows, std::int32_t cols,
                                std::unique_ptr<Matrix>& matrix) {
  char flags;
  if (!file.readBytes({&flags, 1})) return RecordOutcome::damaged;
  const RecordOutcome outcome = readElements(file, rows, cols, matrix);
  if (outcome == RecordOutcome::complete) setFlags(*matrix, flags);
  return outcome;
}

bool holdsText(const Matrix& matrix) {
  if (matrix.rows() != 1) return false;
  return std::ranges::all_of(matrix.elements(), [](const double& element) {
    char last;
    std::memcpy(&last, reinterpret_cast<const char*>(&element) + sizeof element - 1, 1);
    return last == stringMark;
  });
}

}  // namespace

int DataFileTable::firstFree() const {
  const auto* const slot = std::find(m_files.begin(), m_files.end(), nullptr);
  return slot == m_files.end() ? -1 : static_cast<int>(slot - m_files.begin());
}

void DataFileTable::put(int slot, std::unique_ptr<BinaryFile> file) {
  m_files.at(static_cast<std::size_t>(slot)) = std::move(file);
}

BinaryFile* DataFileTable::find(int slot) const {
  return slot >= 0 && slot < dataFileLimit ? m_files[static_cast<std::size_t>(slot)].get()
                                           : nullptr;
}

void DataFileTable::close(int slot) { m_files.at(static_cast<std::size_t>(slot)).reset(); }

int DataFileTable::closeAll() {
  const auto open = dataFileLimit - std::count(m_files.begin(), m_files.end(), nullptr);
  for (auto& file : m_files) file.reset();
  return static_cast<int>(open);
}

DataFileTable& dataFiles() {
  static DataFileTable table;
  return table;
}

int closeAllDataFiles() { return dataFiles().closeAll(); }

bool writeTextRecord(BinaryFile& file, std::string_view text) {
  constexpr char nul = '\0';
  return file.writeInteger(0) && file.writeInteger(static_cast<std::int32_t>(text.size() + 1)) &&
         file.writeBytes(text) && file.writeBytes({&nul, 1});
}

bool writeNumberRecord(BinaryFile& file, double x) {
  return file.writeInteger(1) && file.writeInteger(0) && file.writeNumber(x);
}

bool writeMatrixRecord(BinaryFile& file, const Matrix& matrix) {
  const char flags = flagsByte(matrix);
  return file.writeInteger(matrix.rows()) && file.writeInteger(matrix.cols()) &&
         file.writeBytes({&flags, 1}) && file.writeNumbers(matrix.elements());
}

RecordOutcome readRecord(BinaryFile& file, DataRecord& record) {
  record = {};
  std::int32_t rows, cols;
  if (!file.readInteger(rows) || !file.readInteger(cols)) return RecordOutcome::damaged;
  if (rows == 0) return readTextPayload(file, cols, record.text.emplace());
  if (cols != 0) return readMatrixPayload(file, rows, cols, record.matrix);
  return rows == 1 && file.readNumber(record.number) ? RecordOutcome::complete
                                                     : RecordOutcome::damaged;
}

char flagsByte(const Matrix& matrix) {
  if (matrix.isString()) return stringMark;
  // A larger tag finds no room; without one the matrix is plain.
  return matrix.tag() > largestFileTag ? '\0' : static_cast<char>(matrix.tag());
}

void setFlags(Matrix& matrix, char flags) {
  if (flags == stringMark && holdsText(matrix))
    matrix.setString(true);
  else
    matrix.setTag(static_cast<std::uint8_t>(flags));
}

std::optional<std::uint64_t> elementBytes(BinaryFile& file, std::int32_t rows, std::int32_t cols) {
  if (rows <= 0 || cols <= 0) return std::nullopt;
  // The count is below 2^62, its bytes may be beyond 64 bits.
  const std::uint64_t count = static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(cols);
  constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max() / sizeof(double);
  if (count > most || !file.holds(count * sizeof(double))) return std::nullopt;
  return count * sizeof(double);
}

RecordOutcome readElements(BinaryFile& file, std::int32_t rows, std::int32_t cols,
                           std::unique_ptr<Matrix>& matrix) {
  if (!elementBytes(file, rows, cols)) return RecordOutcome::damaged;
  matrix = std::make_unique<Matrix>();
  if (!matrix->reshape(rows, cols)) return RecordOutcome::noMemory;
  return file.readNumbers(matrix->elements()) ? RecordOutcome::complete : RecordOutcome::damaged;
}

}  // namespace vexa
