#include "interp/interpreter_state.h"

#include <utility>

namespace vexa {

namespace detail {
InterpreterState* current = nullptr;
}

InterpreterState::InterpreterState(Shell& front) : shell(&front) {}

// Stacks borrow what the names and slots own, so they go first.
InterpreterState::~InterpreterState() {
  calls.clear();
  faultCalls.clear();
}

InterpreterScope::InterpreterScope(Shell& front)
    : m_previous(detail::current), m_state(std::make_unique<InterpreterState>(front)) {
  detail::current = m_state.get();
  m_state->runStartTime = front.clock();  // for the calculator before any run
}

InterpreterScope::~InterpreterScope() {
  m_state.reset();
  detail::current = m_previous;
}

}  // namespace vexa
