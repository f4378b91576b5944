#pragma once

// Local variables, dummy variables and frames. Locals of all active calls lie in one table in the
// order of their creation; a frame is a mark in it. Only the locals and dummies above the current
// frame's marks are visible.

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "interp/name_pool.h"

namespace vexa {

inline constexpr int frameLimit = 30;     // entering the frame that reaches it raises key 55
inline constexpr int argumentLimit = 31;  // one more raises key 54
inline constexpr int dummyLimit = 10;     // one more raises key 57

struct LocalRecord {
  std::int16_t type = typeFloat;  // typeFloat or typeMatrix
  char state = 0;                 // '*': a matrix that this record owns
  char flags = 0;                 // 'W': a float that holds whole numbers
  bool temporary = false;         // a parameter bound to a temporary matrix
  bool reference = false;         // a parameter bound to the caller's matrix, which it pins
  Symbol* name = nullptr;         // null until a parameter is bound
  int olderSameName = -1;         // the record that this one hides
  double value = 0;
  Matrix* matrix = nullptr;  // owned, or the caller's
  std::unique_ptr<Matrix> owned;
};

struct DummyRecord {
  Symbol* name = nullptr;
  int olderSameName = -1;
  double value = 0;
};

struct Frame {
  std::size_t localsMark = 0;
  int dummyMark = 0;
  Symbol* function = nullptr;
  const char* callPosition = nullptr;  // in the caller's text, for the list of frames
  std::string arguments;               // "f(2, [3x3])" while values are displayed
};

class CallStack {
 public:
  CallStack() { m_locals.reserve(256); }
  CallStack(const CallStack&) = delete;
  CallStack& operator=(const CallStack&) = delete;

  int depth() const { return m_depth; }
  std::size_t localsCount() const { return m_locals.size(); }
  LocalRecord& local(int index) { return m_locals[static_cast<std::size_t>(index)]; }
  const LocalRecord& local(int index) const { return m_locals[static_cast<std::size_t>(index)]; }
  DummyRecord& dummy(int index) { return m_dummies[static_cast<std::size_t>(index)]; }
  int dummyCount() const { return m_dummyCount; }
  const Frame& frame(int depth) const { return m_frames[static_cast<std::size_t>(depth)]; }
  Frame& frame(int depth) { return m_frames[static_cast<std::size_t>(depth)]; }

  // The marks below which nothing is visible.
  int localsBase() const { return m_localsBase; }
  int dummyBase() const { return m_dummyBase; }
  bool visible(int localIndex) const { return localIndex >= m_localsBase; }

  // Appends an unnamed record and returns its index.
  int pushLocal();
  // Gives a record its name and links it among those of the same name, newest first.
  void nameLocal(int index, Symbol* name);
  // Removes the newest records until `count` are left, freeing the matrices that they own.
  void popLocals(std::size_t count);

  // Records the marks for the next depth and raises key 55 when that reaches frameLimit.
  // `localsMark` is the locals count before the arguments' records were made.
  void pushFrame(std::size_t localsMark, Symbol* function, const char* callPosition);
  void popFrame();

  // Binds a dummy; the caller has checked the name. Raises key 57 when ten are active.
  int pushDummy(Symbol* name);
  void popDummies(int count);

  // Unlinks all names and empties the stack.
  void clear();
  // Moves the whole contents to `other` (cleared first) for the data views after a fault; the
  // names no longer resolve to them.
  void moveTo(CallStack& other);
  // Takes a temporary that records of this stack are still bound to.
  void keep(std::unique_ptr<Matrix> matrix) { m_kept.push_back(std::move(matrix)); }

 private:
  void unlink();

  std::vector<std::unique_ptr<Matrix>> m_kept;
  std::vector<LocalRecord> m_locals;
  std::array<DummyRecord, dummyLimit> m_dummies;
  std::array<Frame, frameLimit + 1> m_frames;
  int m_dummyCount = 0;
  int m_depth = 0;
  int m_localsBase = 0;
  int m_dummyBase = 0;
};

}  // namespace vexa
