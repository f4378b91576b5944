#include "values/temporaries.h"

#include <utility>

#include "interp/errors.h"
#include "interp/interpreter_state.h"
#include "interp/message_box.h"

namespace vexa {

namespace {

// Puts an item into the first free slot; with none left the message is shown and key 34 raised.
template <class T>
T* push(TemporarySlots<T>& slots, std::unique_ptr<T> item, std::string_view overflow) {
  std::unique_ptr<T>* slot = slots.firstFree();
  if (!slot) {
    messageBox(overflow);
    raiseError(ErrorKey::invalidData);
    return nullptr;
  }
  *slot = std::move(item);
  return slot->get();
}

template <class T>
std::unique_ptr<T> pop(TemporarySlots<T>& slots, const T* item) {
  std::unique_ptr<T>* slot = slots.find(item);
  if (!slot) {
    messageBox("Pop vector pointer not found");
    return nullptr;
  }
  return std::move(*slot);
}

}  // namespace

Matrix* pushMatrix(std::unique_ptr<Matrix> matrix) {
  return push(interpreter().tempMatrices, std::move(matrix), "Push too many matrices");
}

WorkVector* pushVector(std::unique_ptr<WorkVector> vector) {
  return push(interpreter().tempVectors, std::move(vector), "Push too many vectors");
}

Matrix* newTempMatrix(int rows, int cols) {
  constexpr std::size_t largeSize = std::size_t{1} << 20;
  auto matrix = newMatrix(rows, cols);
  // Filling it takes as long as many tokens.
  if (matrix->size() >= largeSize) interpreter().scanner.interruptCountdown = 1;
  return pushMatrix(std::move(matrix));
}
WorkVector* newTempVector(std::size_t n) { return pushVector(newVector(n)); }

void freeTempMatrix(const Matrix* matrix) {
  if (!matrix) return;
  if (auto* slot = interpreter().tempMatrices.find(matrix)) slot->reset();
}

void freeTempVector(const WorkVector* vector) {
  if (!vector) return;
  if (auto* slot = interpreter().tempVectors.find(vector)) slot->reset();
}

std::unique_ptr<Matrix> popMatrix(const Matrix* matrix) {
  return pop(interpreter().tempMatrices, matrix);
}

std::unique_ptr<WorkVector> popVector(const WorkVector* vector) {
  return pop(interpreter().tempVectors, vector);
}

bool isTemporary(const Matrix* matrix) {
  return interpreter().tempMatrices.find(matrix) != nullptr;
}

}  // namespace vexa
