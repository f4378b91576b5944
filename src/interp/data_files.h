#pragma once

// Numbered data files: the table of those that are open, and the records that they hold. A data
// file is a bare sequence of values without names; docs/data-file-format.md shows its bytes. The
// other format, named records of all globals, is in globals_file.h.

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "interp/binary_file.h"
#include "values/matrix.h"

namespace vexa {

inline constexpr int dataFileLimit = 15;
inline constexpr int longestRecordText = 255;  // its NUL included

// File IDs are the slots of this table, from 0.
class DataFileTable {
 public:
  // The first empty slot, or -1.
  int firstFree() const;
  void put(int slot, std::unique_ptr<BinaryFile> file);
  // Null for anything but the number of an open file.
  BinaryFile* find(int slot) const;
  void close(int slot);
  // Returns how many were open.
  int closeAll();

 private:
  std::array<std::unique_ptr<BinaryFile>, dataFileLimit> m_files;
};

// The files of the process.
DataFileTable& dataFiles();
int closeAllDataFiles();

// Each writes one record. False when the file could not take it.
bool writeTextRecord(BinaryFile& file, std::string_view text);
bool writeNumberRecord(BinaryFile& file, double x);
bool writeMatrixRecord(BinaryFile& file, const Matrix& matrix);

enum class RecordOutcome {
  complete,
  damaged,   // an order that makes no sense or is beyond what the file holds, or its end
  tooLong,   // a text beyond longestRecordText
  noMemory,  // a matrix that the file holds, but the machine cannot
};

// One of three: a text, a number or a matrix.
struct DataRecord {
  std::optional<std::string> text;
  double number = 0;
  std::unique_ptr<Matrix> matrix;
};

// Reads the next record. Unless it is complete, the place in the file is unspecified.
RecordOutcome readRecord(BinaryFile& file, DataRecord& record);

// ---- Shared with the global-variables file ----

// The flags byte of a matrix in a file: 'S' for a string, otherwise the decomposition tag.
char flagsByte(const Matrix& matrix);
// Gives a matrix that was read its flags. 'S' means a string only where the elements are a text's;
// 83 is also a possible tag.
void setFlags(Matrix& matrix, char flags);
// Reads rows x cols elements into a new matrix. Memory is asked for only when the file still holds
// so many.
RecordOutcome readElements(BinaryFile& file, std::int32_t rows, std::int32_t cols,
                           std::unique_ptr<Matrix>& matrix);
// Bytes of rows x cols elements; nothing for orders that are not positive or beyond the file.
std::optional<std::uint64_t> elementBytes(BinaryFile& file, std::int32_t rows, std::int32_t cols);

}  // namespace vexa
