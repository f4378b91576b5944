// How long routines learn that the user wants to stop, and how they end.
#pragma once

#include <cstddef>
#include <functional>

namespace vexa {

// Asked now and then by long routines; true means that the user wants to stop. It may throw: the
// routines hold nothing that unwinding would lose. An empty one is never asked.
using InterruptTest = std::function<bool()>;

enum class Outcome {
  done,
  singular,     // no usable pivot
  interrupted,  // the interrupt test said so; the result is unfinished
};

inline bool asksToStop(const InterruptTest& interrupted) { return interrupted && interrupted(); }

// Elements that plain loops pass over between two questions: a few milliseconds.
inline constexpr std::size_t elementsBetweenQuestions = std::size_t{1} << 20;

// Asks once in so many elements.
class Pace {
 public:
  explicit Pace(const InterruptTest& interrupted) : m_interrupted(interrupted) {}
  bool stopsAfter(std::size_t elements) {
    m_passed += elements;
    if (m_passed < elementsBetweenQuestions) return false;
    m_passed = 0;
    return asksToStop(m_interrupted);
  }

 private:
  const InterruptTest& m_interrupted;
  std::size_t m_passed = 0;
};

}  // namespace vexa
