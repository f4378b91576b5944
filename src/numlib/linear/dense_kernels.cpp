#include "numlib/linear/dense_kernels.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "numlib/linear/vector_kernels.h"
#include "numlib/parallel_loop.h"

namespace vexa {

namespace {

// A packed piece of the left operand stays in the second cache, a strip of the right one in the
// first while the tiles of a column of tiles pass by.
constexpr int kPackedRows = 96;
constexpr int kPackedDepth = 256;
constexpr int kPackedCols = 768;
// Multiplications that are worth starting threads for, some twenty times what that costs.
constexpr double kThreadsWork = 1e7;
// Beyond this depth a provider gains nothing from a longer piece.
constexpr int kPieceDepth = 256;
constexpr double kSmallPiece = double{kernelOrder} * kernelOrder * kernelOrder;
// Up to this order a triangular system goes to the provider whole, and a lower triangle is updated
// by way of a square.
constexpr int kTriangle = 64;
constexpr int kLowerTile = 96;
// Up to this order our own loops solve a triangular system row by row.
constexpr int kSmallTriangle = 8;

std::size_t size(int count) { return static_cast<std::size_t>(count); }

int roundUp(int count, int step) { return (count + step - 1) / step * step; }

// The step that divides `count` into as few equal parts as steps of at most `longest` allow.
int evenStep(int count, double longest) {
  const double parts = std::ceil(count / std::max(1.0, std::floor(longest)));
  return static_cast<int>(std::ceil(count / parts));
}

double element(ConstBlock m, Taken taken, int i, int j) {
  return taken == Taken::plain ? m.row(i)[j] : m.row(j)[i];
}

// --- Our own provider

// Tiles of the left operand: strips of `tile` rows, each as one column after the other.
void packRows(ConstBlock a, Taken taken, double sign, int i0, int rows, int k0, int depth, int tile,
              double* out) {
  for (int i = 0; i < rows; i += tile) {
    const int height = std::min(tile, rows - i);
    if (height < tile) std::fill_n(out, size(depth) * size(tile), 0.0);
    for (int r = 0; r < height; ++r) {
      for (int k = 0; k < depth; ++k) {
        out[k * tile + r] = sign * element(a, taken, i0 + i + r, k0 + k);
      }
    }
    out += size(depth) * size(tile);
  }
}

// Tiles of the right operand: strips of `tile` columns, each as one row after the other.
void packCols(ConstBlock b, Taken taken, int k0, int depth, int j0, int cols, int tile,
              double* out) {
  for (int j = 0; j < cols; j += tile) {
    const int width = std::min(tile, cols - j);
    if (width < tile) std::fill_n(out, size(depth) * size(tile), 0.0);
    if (taken == Taken::plain) {
      for (int k = 0; k < depth; ++k) {
        std::copy_n(b.row(k0 + k) + j0 + j, width, out + size(k) * size(tile));
      }
    } else {
      for (int c = 0; c < width; ++c) {
        const double* const row = b.row(j0 + j + c) + k0;
        for (int k = 0; k < depth; ++k) out[k * tile + c] = row[k];
      }
    }
    out += size(depth) * size(tile);
  }
}

class OwnKernels final : public DenseKernels {
 public:
  void addProduct(double sign, ConstBlock a, Taken aTaken, ConstBlock b, Taken bTaken,
                  Block c) const override {
    const VectorKernels& vectors = vectorKernels();
    const int tileRows = vectors.tileRows, tileCols = vectors.tileCols;
    const int inner = aTaken == Taken::plain ? a.cols : a.rows;
    const int threads = double(c.rows) * c.cols * inner < kThreadsWork ? 1 : loopThreads();
    const int maxDepth = std::min(inner, kPackedDepth);
    // Strips for all threads to share, each packing its own part of the left operand.
    const int share = (c.rows + threads - 1) / threads;
    const int maxRows = roundUp(std::min(kPackedRows, share), tileRows);
    const int maxCols = std::min(roundUp(c.cols, tileCols), roundUp(kPackedCols, tileCols));
    const std::size_t rowsPack = size(maxRows) * size(maxDepth);
    const auto packedA = std::make_unique_for_overwrite<double[]>(size(threads) * rowsPack);
    const auto packedB = std::make_unique_for_overwrite<double[]>(size(maxCols) * size(maxDepth));
    for (int j0 = 0; j0 < c.cols; j0 += maxCols) {
      const int cols = std::min(maxCols, c.cols - j0);
      for (int k0 = 0; k0 < inner; k0 += maxDepth) {
        const int depth = std::min(maxDepth, inner - k0);
        packCols(b, bTaken, k0, depth, j0, cols, tileCols, packedB.get());
        const auto addStrip = [&](int strip, int worker) {
          const int i0 = strip * maxRows, rows = std::min(maxRows, c.rows - i0);
          double* const pack = packedA.get() + size(worker) * rowsPack;
          packRows(a, aTaken, sign, i0, rows, k0, depth, tileRows, pack);
          addTiles(vectors, depth, pack, packedB.get(), c.part(i0, j0, rows, cols));
        };
        const int strips = (c.rows + maxRows - 1) / maxRows;
        if (threads > 1) {
          parallelLoop(strips, threads, addStrip);
        } else {
          for (int strip = 0; strip < strips; ++strip) addStrip(strip, 0);
        }
      }
    }
  }

  double pieceWork() const override { return basicPieceWork * loopThreads(); }

  void solve(TriangularSystem system, ConstBlock t, Block x) const override {
    const VectorKernels& vectors = vectorKernels();
    const int n = t.rows;
    std::vector<double> factors(size(n));
    const auto negate = [&](const double* from, int count) {
      std::transform(from, from + count, factors.begin(), [](double f) { return -f; });
    };
    switch (system) {
      case TriangularSystem::lowerUnit:
        for (int i = 1; i < n; ++i) {
          negate(t.row(i), i);
          vectors.addRows(x.row(i), factors.data(), i, x.data, x.stride, size(x.cols));
        }
        return;
      case TriangularSystem::upper:
        for (int i = n - 1; i >= 0; --i) {
          if (i + 1 < n) {
            negate(t.row(i) + i + 1, n - 1 - i);
            vectors.addRows(x.row(i), factors.data(), n - 1 - i, x.row(i + 1), x.stride,
                            size(x.cols));
          }
          const double pivot = t.row(i)[i];
          std::for_each_n(x.row(i), x.cols, [pivot](double& e) { e /= pivot; });
        }
        return;
      case TriangularSystem::lowerTransposed:
      case TriangularSystem::lowerUnitTransposed:
        solveFromRight(system, t, x);
        return;
    }
  }

 private:
  static void addTiles(const VectorKernels& vectors, int depth, const double* a, const double* b,
                       Block c) {
    const int tileRows = vectors.tileRows, tileCols = vectors.tileCols;
    // The widest tile there is: 8 rows of 24.
    alignas(64) double edge[8 * 24];
    for (int j = 0; j < c.cols; j += tileCols) {
      const double* const strip = b + size(j) * size(depth);
      for (int i = 0; i < c.rows; i += tileRows) {
        const double* const tile = a + size(i) * size(depth);
        const int rows = std::min(tileRows, c.rows - i);
        const int cols = std::min(tileCols, c.cols - j);
        if (rows == tileRows && cols == tileCols) {
          vectors.addTile(depth, tile, strip, c.row(i) + j, c.stride);
          continue;
        }
        std::ranges::fill(edge, 0.0);
        vectors.addTile(depth, tile, strip, edge, tileCols);
        for (int r = 0; r < rows; ++r) {
          double* const row = c.row(i + r) + j;
          for (int k = 0; k < cols; ++k) row[k] += edge[r * tileCols + k];
        }
      }
    }
  }

  // y Lᵀ = x by halves, so that most of the work is a product.
  void solveFromRight(TriangularSystem system, ConstBlock t, Block x) const {
    const int n = t.rows;
    if (n > kSmallTriangle) {
      const int half = roundUp(n / 2, kSmallTriangle);
      const Block left = x.part(0, 0, x.rows, half);
      const Block right = x.part(0, half, x.rows, n - half);
      solveFromRight(system, t.part(0, 0, half, half), left);
      addProduct(-1.0, left, Taken::plain, t.part(half, 0, n - half, half), Taken::transposed,
                 right);
      solveFromRight(system, t.part(half, half, n - half, n - half), right);
      return;
    }
    for (int i = 0; i < x.rows; ++i) {
      double* const y = x.row(i);
      for (int j = 0; j < n; ++j) {
        const double* const row = t.row(j);
        double sum = y[j];
        for (int k = 0; k < j; ++k) sum -= row[k] * y[k];
        y[j] = system == TriangularSystem::lowerTransposed ? sum / row[j] : sum;
      }
    }
  }
};

// --- Which provider

bool& blasAllowed() {
  static bool allowed = [] {
    // Read once, before any thread of ours could exist.
    const char* const setting = std::getenv("VEXA_BLAS");
    return !setting || std::strcmp(setting, "off") != 0;
  }();
  return allowed;
}

bool isFromRight(TriangularSystem system) {
  return system == TriangularSystem::lowerTransposed ||
         system == TriangularSystem::lowerUnitTransposed;
}

// A library that wakes threads for a small piece loses more than it gains.
const DenseKernels& kernelsFor(double multiplications, Provider provider) {
  return provider == Provider::own || multiplications < kSmallPiece ? ownKernels() : denseKernels();
}

bool solveByHalves(TriangularSystem system, ConstBlock t, Block x, const InterruptTest& interrupted,
                   Provider provider) {
  const int n = t.rows;
  if (n <= kTriangle) {
    const DenseKernels& kernels =
        kernelsFor(double(n) * n * (isFromRight(system) ? x.rows : x.cols), provider);
    // n is small, so the length of x bounds the work.
    const int step = static_cast<int>(basicPieceWork) / (kTriangle * kTriangle);
    const int length = isFromRight(system) ? x.rows : x.cols;
    for (int at = 0; at < length; at += step) {
      if (asksToStop(interrupted)) return false;
      const int count = std::min(step, length - at);
      kernels.solve(system, t,
                    isFromRight(system) ? x.part(at, 0, count, n) : x.part(0, at, n, count));
    }
    return true;
  }
  const int half = roundUp(n / 2, kTriangle / 2);
  const int rest = n - half;
  const ConstBlock first = t.part(0, 0, half, half), last = t.part(half, half, rest, rest);
  const auto solvePart = [&](ConstBlock triangle, Block part) {
    return solveByHalves(system, triangle, part, interrupted, provider);
  };
  if (isFromRight(system)) {
    const Block left = x.part(0, 0, x.rows, half), right = x.part(0, half, x.rows, rest);
    return solvePart(first, left) &&
           addProductInPieces(-1.0, left, Taken::plain, t.part(half, 0, rest, half),
                              Taken::transposed, right, interrupted, provider) &&
           solvePart(last, right);
  }
  const Block top = x.part(0, 0, half, x.cols), bottom = x.part(half, 0, rest, x.cols);
  if (system == TriangularSystem::lowerUnit) {
    return solvePart(first, top) &&
           addProductInPieces(-1.0, t.part(half, 0, rest, half), Taken::plain, top, Taken::plain,
                              bottom, interrupted, provider) &&
           solvePart(last, bottom);
  }
  return solvePart(last, bottom) &&
         addProductInPieces(-1.0, t.part(0, half, half, rest), Taken::plain, bottom, Taken::plain,
                            top, interrupted, provider) &&
         solvePart(first, top);
}

}  // namespace

const DenseKernels& ownKernels() {
  static const OwnKernels kernels;
  return kernels;
}

const DenseKernels& denseKernels() {
  if (blasAllowed()) {
    if (const DenseKernels* blas = systemBlasKernels()) return *blas;
  }
  return ownKernels();
}

void allowSystemBlas(bool allowed) { blasAllowed() = allowed; }

bool systemBlasAllowed() { return blasAllowed(); }

bool worthKernels(int rows, int inner, int cols) {
  return std::max({rows, inner, cols}) >= kernelOrder && std::min({rows, inner, cols}) >= 8 &&
         double(rows) * inner * cols >= kSmallPiece;
}

bool addProductInPieces(double sign, ConstBlock a, Taken aTaken, ConstBlock b, Taken bTaken,
                        Block c, const InterruptTest& interrupted, Provider provider) {
  const int inner = aTaken == Taken::plain ? a.cols : a.rows;
  if (c.rows == 0 || c.cols == 0 || inner == 0) return true;
  const double work = double(c.rows) * c.cols * inner;
  const DenseKernels& kernels = kernelsFor(work, provider);
  const bool whole = work <= kernels.pieceWork();
  const int depthStep = whole ? inner : evenStep(inner, kPieceDepth);
  const double area = kernels.pieceWork() / depthStep;
  const int colStep = whole ? c.cols : evenStep(c.cols, std::max(512.0, std::sqrt(area)));
  const int rowStep = whole ? c.rows : evenStep(c.rows, area / colStep);
  for (int k = 0; k < inner; k += depthStep) {
    const int depth = std::min(depthStep, inner - k);
    for (int i = 0; i < c.rows; i += rowStep) {
      const int rows = std::min(rowStep, c.rows - i);
      const ConstBlock left =
          aTaken == Taken::plain ? a.part(i, k, rows, depth) : a.part(k, i, depth, rows);
      for (int j = 0; j < c.cols; j += colStep) {
        if (asksToStop(interrupted)) return false;
        const int cols = std::min(colStep, c.cols - j);
        const ConstBlock right =
            bTaken == Taken::plain ? b.part(k, j, depth, cols) : b.part(j, k, cols, depth);
        kernels.addProduct(sign, left, aTaken, right, bTaken, c.part(i, j, rows, cols));
      }
    }
  }
  return true;
}

bool subtractLowerProduct(ConstBlock a, Taken aTaken, ConstBlock b, Taken bTaken, Block c,
                          const InterruptTest& interrupted) {
  const int inner = aTaken == Taken::plain ? a.cols : a.rows;
  std::vector<double> square(size(kLowerTile) * size(kLowerTile));
  for (int i = 0; i < c.rows; i += kLowerTile) {
    const int rows = std::min(kLowerTile, c.rows - i);
    const ConstBlock left =
        aTaken == Taken::plain ? a.part(i, 0, rows, inner) : a.part(0, i, inner, rows);
    const auto columns = [&](int j, int count) {
      return bTaken == Taken::plain ? b.part(0, j, inner, count) : b.part(j, 0, count, inner);
    };
    if (!addProductInPieces(-1.0, left, aTaken, columns(0, i), bTaken, c.part(i, 0, rows, i),
                            interrupted)) {
      return false;
    }
    std::ranges::fill(square, 0.0);
    const Block tile{square.data(), rows, rows, rows};
    if (!addProductInPieces(1.0, left, aTaken, columns(i, rows), bTaken, tile, interrupted)) {
      return false;
    }
    for (int r = 0; r < rows; ++r) {
      double* const row = c.row(i + r) + i;
      for (int k = 0; k <= r; ++k) row[k] -= tile.row(r)[k];
    }
  }
  return true;
}

bool solveInPieces(TriangularSystem system, ConstBlock t, Block x, const InterruptTest& interrupted,
                   Provider provider) {
  return solveByHalves(system, t, x, interrupted, provider);
}

}  // namespace vexa
