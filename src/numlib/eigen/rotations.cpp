#include "numlib/eigen/rotations.h"

#include <algorithm>

#include "numlib/eigen/packs.h"
#include "numlib/parallel_loop.h"

namespace vexa {

namespace {

// Rows that are rotated together. Their columns stand one behind the other in the panel.
constexpr int kPanelRows = 4 * packSize;

// Columns that go to a panel or back together, so that what is written stays in the nearest cache.
constexpr int kCopiedCols = 64;
// Rotations of a row that are worth starting threads for, and that may pass between two questions
// to the user, some ten milliseconds.
constexpr double kThreadsWork = 1e6;
constexpr double kPieceWork = 1e7;

StoredPack* packs(double* column) { return reinterpret_cast<StoredPack*>(column); }

}  // namespace

ColumnRotations::ColumnRotations(MatrixView target, const InterruptTest& interrupted)
    : m_target(target),
      m_interrupted(interrupted),
      // Copying rows into a panel and back must be a small share of the work on it.
      m_enough(std::max<std::size_t>(8192, 32 * static_cast<std::size_t>(target.cols))) {}

void ColumnRotations::beginChain(int column, Direction direction) {
  const int step = direction == Direction::ascending ? 1 : -1;
  m_sweeps.push_back({m_rotations.size(), column, column + step, step, false});
}

void ColumnRotations::beginFan(int hub, int first) {
  m_sweeps.push_back({m_rotations.size(), hub, first, 1, true});
}

// The four packs of the carried column stay in registers for the whole sweep.
VEXA_WIDE_LOOPS void ColumnRotations::applySweep(double* panel, const Sweep& sweep,
                                                 const Rotation* rotation, std::ptrdiff_t count) {
  StoredPack* carried = packs(panel + sweep.start * std::ptrdiff_t{kPanelRows});
  StoredPack* next = packs(panel + sweep.first * std::ptrdiff_t{kPanelRows});
  const std::ptrdiff_t step = sweep.step * std::ptrdiff_t{kPanelRows / packSize};
  Pack x0 = carried[0].lanes, x1 = carried[1].lanes, x2 = carried[2].lanes, x3 = carried[3].lanes;
  if (sweep.fan) {
    for (; count > 0; --count, ++rotation, next += step) {
      const double c = rotation->c;
      const double s = rotation->s;
      const Pack y0 = next[0].lanes, y1 = next[1].lanes, y2 = next[2].lanes, y3 = next[3].lanes;
      next[0].lanes = c * y0 - s * x0;
      next[1].lanes = c * y1 - s * x1;
      next[2].lanes = c * y2 - s * x2;
      next[3].lanes = c * y3 - s * x3;
      x0 = c * x0 + s * y0;
      x1 = c * x1 + s * y1;
      x2 = c * x2 + s * y2;
      x3 = c * x3 + s * y3;
    }
  } else {
    for (; count > 0; --count, ++rotation, carried = next, next += step) {
      const double c = rotation->c;
      const double s = rotation->s;
      const Pack y0 = next[0].lanes, y1 = next[1].lanes, y2 = next[2].lanes, y3 = next[3].lanes;
      carried[0].lanes = c * x0 + s * y0;
      carried[1].lanes = c * x1 + s * y1;
      carried[2].lanes = c * x2 + s * y2;
      carried[3].lanes = c * x3 + s * y3;
      x0 = c * y0 - s * x0;
      x1 = c * y1 - s * x1;
      x2 = c * y2 - s * x2;
      x3 = c * y3 - s * x3;
    }
  }
  carried[0].lanes = x0;
  carried[1].lanes = x1;
  carried[2].lanes = x2;
  carried[3].lanes = x3;
}

void ColumnRotations::applyToPanel(double* panel, int firstRow, int firstCol, int lastCol) const {
  const int rows = std::min(kPanelRows, m_target.rows - firstRow);
  const auto forEachElement = [&](auto copy) {
    for (int block = firstCol; block <= lastCol; block += kCopiedCols) {
      const int end = std::min(block + kCopiedCols, lastCol + 1);
      for (int r = 0; r < rows; ++r) {
        double* const row = m_target.row(firstRow + r);
        for (int j = block; j < end; ++j) copy(row[j], panel[j * std::ptrdiff_t{kPanelRows} + r]);
      }
    }
  };
  forEachElement([](double element, double& place) { place = element; });
  for (std::size_t k = 0; k < m_sweeps.size(); ++k) {
    const std::size_t begin = m_sweeps[k].begin;
    const std::size_t end = k + 1 < m_sweeps.size() ? m_sweeps[k + 1].begin : m_rotations.size();
    applySweep(panel, m_sweeps[k], m_rotations.data() + begin,
               static_cast<std::ptrdiff_t>(end - begin));
  }
  forEachElement([](double& element, double place) { element = place; });
}

bool ColumnRotations::applyAll() {
  if (m_rotations.empty()) return true;
  int firstCol = m_target.cols - 1;
  int lastCol = 0;
  for (std::size_t k = 0; k < m_sweeps.size(); ++k) {
    const std::size_t end = k + 1 < m_sweeps.size() ? m_sweeps[k + 1].begin : m_rotations.size();
    const int count = static_cast<int>(end - m_sweeps[k].begin);
    const int last = m_sweeps[k].first + (count - 1) * m_sweeps[k].step;
    firstCol = std::min({firstCol, m_sweeps[k].start, last});
    lastCol = std::max({lastCol, m_sweeps[k].start, last});
  }
  const auto rowWork = static_cast<double>(m_rotations.size());
  const int threads = rowWork * m_target.rows < kThreadsWork ? 1 : loopThreads();
  const std::size_t panelSize = static_cast<std::size_t>(m_target.cols) * kPanelRows;
  m_panels.resize(std::max(m_panels.size(), panelSize * static_cast<std::size_t>(threads)));
  const int panels = (m_target.rows + kPanelRows - 1) / kPanelRows;
  const int step = threads * std::max(1, static_cast<int>(kPieceWork / (rowWork * kPanelRows)));
  for (int first = 0; first < panels; first += step) {
    if (asksToStop(m_interrupted)) return false;
    parallelLoop(std::min(step, panels - first), threads, [&](int index, int worker) {
      applyToPanel(m_panels.data() + panelSize * static_cast<std::size_t>(worker),
                   (first + index) * kPanelRows, firstCol, lastCol);
    });
  }
  m_rotations.clear();
  m_sweeps.clear();
  return true;
}

}  // namespace vexa
