#include <dlfcn.h>

#include <memory>

#include "numlib/linear/dense_kernels.h"

namespace vexa {

namespace {

// The two routines with their arguments by address, matrices column by column, sizes of 32 bits.
using Gemm = void (*)(const char* transA, const char* transB, const int* m, const int* n,
                      const int* k, const double* alpha, const double* a, const int* lda,
                      const double* b, const int* ldb, const double* beta, double* c,
                      const int* ldc);
using Trsm = void (*)(const char* side, const char* uplo, const char* transA, const char* diag,
                      const int* m, const int* n, const double* alpha, const double* a,
                      const int* lda, double* b, const int* ldb);

// A matrix stored row by row is its transpose stored column by column, so every operation is
// called for with transposed operands: cᵀ += bᵀ aᵀ, and a system from the left becomes one from
// the right.
class BlasKernels final : public DenseKernels {
 public:
  BlasKernels(Gemm gemm, Trsm trsm) : m_gemm(gemm), m_trsm(trsm) {}

  void addProduct(double sign, ConstBlock a, Taken aTaken, ConstBlock b, Taken bTaken,
                  Block c) const override {
    const int inner = aTaken == Taken::plain ? a.cols : a.rows;
    const int strideA = static_cast<int>(a.stride), strideB = static_cast<int>(b.stride);
    const int strideC = static_cast<int>(c.stride);
    const double one = 1.0;
    m_gemm(bTaken == Taken::plain ? "N" : "T", aTaken == Taken::plain ? "N" : "T", &c.cols, &c.rows,
           &inner, &sign, b.data, &strideB, a.data, &strideA, &one, c.data, &strideC);
  }

  void solve(TriangularSystem system, ConstBlock t, Block x) const override {
    const bool lower = system != TriangularSystem::upper;
    const bool fromRight = system == TriangularSystem::lowerTransposed ||
                           system == TriangularSystem::lowerUnitTransposed;
    const bool unit =
        system == TriangularSystem::lowerUnit || system == TriangularSystem::lowerUnitTransposed;
    const int strideT = static_cast<int>(t.stride), strideX = static_cast<int>(x.stride);
    const double one = 1.0;
    m_trsm(fromRight ? "L" : "R", lower ? "U" : "L", fromRight ? "T" : "N", unit ? "U" : "N",
           &x.cols, &x.rows, &one, t.data, &strideT, x.data, &strideX);
  }

  double pieceWork() const override { return basicPieceWork; }

 private:
  Gemm m_gemm;
  Trsm m_trsm;
};

// Null when the library is absent or lacks what we call. It stays open until the process ends,
// since its threads may live as long.
std::unique_ptr<const BlasKernels> openBlas() {
  void* const library = dlopen("libblas.so.3", RTLD_NOW | RTLD_LOCAL);
  if (!library) return nullptr;
  const auto gemm = reinterpret_cast<Gemm>(dlsym(library, "dgemm_"));
  const auto trsm = reinterpret_cast<Trsm>(dlsym(library, "dtrsm_"));
  if (gemm && trsm) return std::make_unique<const BlasKernels>(gemm, trsm);
  dlclose(library);
  return nullptr;
}

}  // namespace

const DenseKernels* systemBlasKernels() {
  static const std::unique_ptr<const BlasKernels> kernels = openBlas();
  return kernels.get();
}

}  // namespace vexa
