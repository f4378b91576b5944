#pragma once

// The 30 slots of temporary matrices and the 30 of temporary vectors. A temporary lives from the
// operator that makes it until the operator or statement that consumes it; whatever a fault leaves
// behind is released when the run ends.

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "values/matrix.h"

namespace vexa {

inline constexpr int temporarySlotCount = 30;

template <class T>
class TemporarySlots {
 public:
  // The first free slot, or null when all are taken.
  std::unique_ptr<T>* firstFree() {
    for (auto& slot : m_slots)
      if (!slot) return &slot;
    return nullptr;
  }
  std::unique_ptr<T>* find(const T* item) {
    for (auto& slot : m_slots)
      if (slot.get() == item && item) return &slot;
    return nullptr;
  }
  int inUse() const {
    int count = 0;
    for (const auto& slot : m_slots) count += slot != nullptr;
    return count;
  }
  void clear() {
    for (auto& slot : m_slots) slot.reset();
  }
  // Which slots are taken, a bit for each; what was taken later can be cleared by it.
  std::uint32_t occupancy() const {
    std::uint32_t taken = 0;
    for (std::size_t i = 0; i < m_slots.size(); ++i)
      if (m_slots[i]) taken |= std::uint32_t{1} << i;
    return taken;
  }
  void clearAllBut(std::uint32_t kept) {
    for (std::size_t i = 0; i < m_slots.size(); ++i)
      if (!(kept >> i & 1)) m_slots[i].reset();
  }
  template <class Taker>
  void moveAll(Taker take) {
    for (auto& slot : m_slots)
      if (slot) take(std::move(slot));
  }

 private:
  std::array<std::unique_ptr<T>, temporarySlotCount> m_slots;
};

// A zero-filled temporary in the first free slot, which owns it. With all slots taken the message
// "Push too many matrices" (or "... vectors") is shown and key 34 raised.
Matrix* newTempMatrix(int rows, int cols);
WorkVector* newTempVector(std::size_t n);
// Registers a matrix made elsewhere as a temporary.
Matrix* pushMatrix(std::unique_ptr<Matrix> matrix);
WorkVector* pushVector(std::unique_ptr<WorkVector> vector);
// Frees only what stands in a slot; given anything else it does nothing, so that an operator may
// call it on any operand.
void freeTempMatrix(const Matrix* matrix);
void freeTempVector(const WorkVector* vector);
// Takes a temporary out of its slot. Shows "Pop vector pointer not found" and gives null when it
// stands in none.
std::unique_ptr<Matrix> popMatrix(const Matrix* matrix);
std::unique_ptr<WorkVector> popVector(const WorkVector* vector);
bool isTemporary(const Matrix* matrix);

}  // namespace vexa
