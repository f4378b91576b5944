#include "values/matrix.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

#include "interp/interpreter_state.h"

namespace vexa {

namespace {

std::uint64_t machineMemory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return std::uint64_t{1} << 40;
  return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
}

// The blocks of all matrices count toward one bound. The system hands out zero pages lazily and
// would promise more than it has, so the bound is ours to keep.
struct Accounting {
  std::uint64_t limit = machineMemory();
  std::uint64_t inUse = 0;
};

Accounting& accounting() {
  static Accounting record;
  return record;
}

std::uint64_t blockBytes(int rows, int cols) {
  return static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(cols) * sizeof(double) +
         (static_cast<std::uint64_t>(rows) + 1) * sizeof(double*);
}

// Asks for large pages inside a large block: the first touch of ordinary ones can cost more than
// the work on the elements. Nothing depends on the answer.
void preferLargePages(void* block, std::uint64_t bytes) {
  constexpr std::uint64_t largePage = std::uint64_t{1} << 21;
  const auto start = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t first = (start + largePage - 1) / largePage * largePage;
  const std::uintptr_t last = (start + bytes) / largePage * largePage;
  if (last > first)
    madvise(static_cast<char*>(block) + (first - start), last - first, MADV_HUGEPAGE);
}

}  // namespace

void setMatrixMemoryLimit(std::uint64_t bytes) { accounting().limit = bytes; }
std::uint64_t matrixMemoryInUse() { return accounting().inUse; }

bool matrixMemoryHolds(std::uint64_t elements) {
  const Accounting& memory = accounting();
  return memory.inUse <= memory.limit && elements <= (memory.limit - memory.inUse) / sizeof(double);
}

bool Matrix::reshape(int rows, int cols) {
  if (rows <= 0 || cols <= 0) return false;
  Accounting& memory = accounting();
  // rows and cols are below 2^31, so the product of their bytes fits into 66 bits at most; the
  // element count is tested first to keep the sum within 64.
  const std::uint64_t elements =
      static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(cols);
  if (elements > memory.limit / sizeof(double)) return false;
  const std::uint64_t bytes = blockBytes(rows, cols);
  if (bytes > memory.limit || memory.inUse > memory.limit - bytes) return false;
  void* allocation = std::calloc(bytes, 1);
  if (!allocation) return false;
  preferLargePages(allocation, bytes);
  release();
  memory.inUse += bytes;
  m_block = static_cast<double*>(allocation);
  m_rowTable = reinterpret_cast<double**>(m_block + elements);
  for (int i = 1; i <= rows; ++i)
    m_rowTable[i] = m_block + static_cast<std::size_t>(i - 1) * static_cast<std::size_t>(cols);
  m_rows = rows;
  m_cols = cols;
  m_tag = 0;
  m_isString = false;
  return true;
}

void Matrix::swapContents(Matrix& other) noexcept {
  std::swap(m_block, other.m_block);
  std::swap(m_rowTable, other.m_rowTable);
  std::swap(m_rows, other.m_rows);
  std::swap(m_cols, other.m_cols);
  std::swap(m_tag, other.m_tag);
  std::swap(m_isString, other.m_isString);
}

void Matrix::release() noexcept {
  if (!m_block) return;
  accounting().inUse -= blockBytes(m_rows, m_cols);
  std::free(m_block);
  m_block = nullptr;
  m_rowTable = nullptr;
}

std::unique_ptr<Matrix> newMatrix(int rows, int cols) {
  auto matrix = std::make_unique<Matrix>();
  if (!matrix->reshape(rows, cols)) {
    interpreter().currentMatrix = nullptr;
    raiseError(ErrorKey::allocationFailed);
    // Outside an evaluation the raise returns; the smallest matrix keeps callers whole.
    if (!matrix->reshape(1, 1)) throw std::bad_alloc();
  }
  return matrix;
}

void redefineMatrix(Matrix& matrix, int rows, int cols) {
  if (!matrix.reshape(rows, cols)) raiseError(ErrorKey::allocationFailed);
}

WorkVector::WorkVector(std::size_t n)
    : m_values(static_cast<double*>(std::calloc(n + 1, sizeof(double)))), m_size(n) {
  if (!m_values) throw std::bad_alloc();
}

std::unique_ptr<WorkVector> newVector(std::size_t n) {
  if (n == 0) {
    raiseError(ErrorKey::zeroOrder);
    n = 1;
  }
  if (n > accounting().limit / sizeof(double) - 1) {
    raiseError(ErrorKey::allocationFailed);
    n = 1;
  }
  try {
    return std::make_unique<WorkVector>(n);
  } catch (const std::bad_alloc&) {
    raiseError(ErrorKey::allocationFailed);
    throw;
  }
}

}  // namespace vexa
