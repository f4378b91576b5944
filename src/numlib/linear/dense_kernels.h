// The two pieces of work in which dense factorisations spend their time: products of blocks and
// triangular systems with many right sides. Two providers do them: our own loops over vectors of
// the processor, and the system's BLAS.
//
// The BLAS is opened at the first call with an order of kernelOrder or more, so that nobody else
// waits for it; without one, and for factorisations from frugalOrder on, our own loops serve. Both
// add in an order of their own and fuse products with sums, so their results differ in the last
// digits, from each other and from one processor to the next; the number of processors changes
// nothing in ours. Below kernelOrder nothing here is used for such work, and results are the same
// everywhere.
#pragma once

#include <cstddef>

#include "numlib/linear/interrupt_test.h"
#include "numlib/matrix_view.h"

namespace vexa {

// From this order on the kernels are worth their overhead.
inline constexpr int kernelOrder = 128;
// From this order on our own kernels factorise about as fast as the BLAS, which would hold several
// megabytes for itself.
inline constexpr int frugalOrder = 2048;
// Columns that a factorisation eliminates by itself before it hands the rest to the kernels.
inline constexpr int panelColumns = 48;

// A rectangle inside a larger matrix: row i begins at data + i * stride.
struct Block {
  double* data = nullptr;
  std::ptrdiff_t stride = 0;
  int rows = 0, cols = 0;

  double* row(int i) const { return data + i * stride; }
  Block part(int i, int j, int rowCount, int colCount) const {
    return {row(i) + j, stride, rowCount, colCount};
  }
};

struct ConstBlock {
  const double* data = nullptr;
  std::ptrdiff_t stride = 0;
  int rows = 0, cols = 0;

  ConstBlock() = default;
  ConstBlock(const double* first, std::ptrdiff_t rowStride, int rowCount, int colCount)
      : data(first), stride(rowStride), rows(rowCount), cols(colCount) {}
  ConstBlock(Block b) : data(b.data), stride(b.stride), rows(b.rows), cols(b.cols) {}

  const double* row(int i) const { return data + i * stride; }
  ConstBlock part(int i, int j, int rowCount, int colCount) const {
    return {row(i) + j, stride, rowCount, colCount};
  }
};

inline Block blockOf(MatrixView m) { return {m.data, m.cols, m.rows, m.cols}; }
inline ConstBlock blockOf(ConstMatrixView m) { return {m.data, m.cols, m.rows, m.cols}; }

// Whether an operand is taken as it stands or transposed.
enum class Taken { plain, transposed };

// The triangular systems that the factorisations need; x is replaced by the solution.
enum class TriangularSystem {
  lowerUnit,           // L y = x, ones on the diagonal of L
  upper,               // U y = x
  lowerTransposed,     // y Lᵀ = x
  lowerUnitTransposed  // y Lᵀ = x, ones on the diagonal of L
};

// Multiplications between two questions to the user: some ten milliseconds with the slowest
// processor.
inline constexpr double basicPieceWork = 4e7;

class DenseKernels {
 public:
  virtual ~DenseKernels() = default;
  // c += sign * a * b, with sign 1 or -1. c shares nothing with a and b.
  virtual void addProduct(double sign, ConstBlock a, Taken aTaken, ConstBlock b, Taken bTaken,
                          Block c) const = 0;
  // Only the named triangle of t is read. A zero on the diagonal gives infinities.
  virtual void solve(TriangularSystem system, ConstBlock t, Block x) const = 0;
  // Multiplications of one product that may pass between two questions to the user.
  virtual double pieceWork() const = 0;
};

// The provider in force: the BLAS when it is allowed and could be opened, otherwise our own.
const DenseKernels& denseKernels();
const DenseKernels& ownKernels();
// Which of them serves: the one in force, or our own for its small need of memory.
enum class Provider { inForce, own };
// Null when there is no usable BLAS on this machine, whatever has been allowed.
const DenseKernels* systemBlasKernels();

// For a front's option. The environment variable VEXA_BLAS with the value "off" has the same
// effect before the first call.
void allowSystemBlas(bool allowed);
bool systemBlasAllowed();

// Whether a product of these orders is work for the kernels.
bool worthKernels(int rows, int inner, int cols);

// The same work in pieces of a bounded size, asking before each: c += sign * a * b. False when the
// user wants to stop; c is unfinished then.
[[nodiscard]] bool addProductInPieces(double sign, ConstBlock a, Taken aTaken, ConstBlock b,
                                      Taken bTaken, Block c, const InterruptTest& interrupted,
                                      Provider provider = Provider::inForce);
// c -= aᵀ or a times b or bᵀ, only on and below the diagonal of the square c.
[[nodiscard]] bool subtractLowerProduct(ConstBlock a, Taken aTaken, ConstBlock b, Taken bTaken,
                                        Block c, const InterruptTest& interrupted);
// A triangular system of any order with any number of right sides.
[[nodiscard]] bool solveInPieces(TriangularSystem system, ConstBlock t, Block x,
                                 const InterruptTest& interrupted,
                                 Provider provider = Provider::inForce);

}  // namespace vexa
