#include "interp/call_stack.h"

#include "interp/errors.h"

namespace vexa {

int CallStack::pushLocal() {
  m_locals.emplace_back();
  return static_cast<int>(m_locals.size()) - 1;
}

void CallStack::nameLocal(int index, Symbol* name) {
  LocalRecord& record = local(index);
  record.name = name;
  // Parameters are named from the newest record downward, so a record may have to be linked below
  // a newer one of the same name.
  int newer = -1;
  int older = name->localTop;
  while (older > index) {
    newer = older;
    older = local(older).olderSameName;
  }
  record.olderSameName = older;
  (newer < 0 ? name->localTop : local(newer).olderSameName) = index;
}

void CallStack::popLocals(std::size_t count) {
  while (m_locals.size() > count) {
    LocalRecord& record = m_locals.back();
    if (record.name) record.name->localTop = record.olderSameName;
    if (record.reference) record.matrix->unpin();
    m_locals.pop_back();
  }
}

void CallStack::pushFrame(std::size_t localsMark, Symbol* function, const char* callPosition) {
  Frame& entered = frame(m_depth);
  entered.localsMark = localsMark;
  entered.dummyMark = m_dummyCount;
  entered.function = function;
  entered.callPosition = callPosition;
  ++m_depth;
  m_localsBase = static_cast<int>(localsMark);
  m_dummyBase = m_dummyCount;
  if (m_depth == frameLimit) raiseError(ErrorKey::nestingTooDeep);
}

void CallStack::popFrame() {
  --m_depth;
  const Frame& left = frame(m_depth);
  popLocals(left.localsMark);
  popDummies(left.dummyMark);
  m_localsBase = m_depth > 0 ? static_cast<int>(frame(m_depth - 1).localsMark) : 0;
  m_dummyBase = m_depth > 0 ? frame(m_depth - 1).dummyMark : 0;
}

int CallStack::pushDummy(Symbol* name) {
  if (m_dummyCount == dummyLimit) {
    raiseError(ErrorKey::tooManyDummies);
    return -1;
  }
  DummyRecord& record = dummy(m_dummyCount);
  record.name = name;
  record.value = 0;
  record.olderSameName = name->dummyTop;
  name->dummyTop = m_dummyCount;
  return m_dummyCount++;
}

void CallStack::popDummies(int count) {
  while (m_dummyCount > count) {
    DummyRecord& record = dummy(--m_dummyCount);
    record.name->dummyTop = record.olderSameName;
    record.name = nullptr;
  }
}

void CallStack::unlink() {
  for (LocalRecord& record : m_locals)
    if (record.name) record.name->localTop = -1;
  for (int i = 0; i < m_dummyCount; ++i)
    if (dummy(i).name) dummy(i).name->dummyTop = -1;
}

void CallStack::clear() {
  unlink();
  for (LocalRecord& record : m_locals)
    if (record.reference) record.matrix->unpin();
  m_locals.clear();
  m_kept.clear();
  m_dummyCount = 0;
  m_depth = 0;
  m_localsBase = 0;
  m_dummyBase = 0;
}

void CallStack::moveTo(CallStack& other) {
  other.clear();
  unlink();
  other.m_locals.swap(m_locals);
  other.m_frames.swap(m_frames);
  other.m_depth = m_depth;
  // Dummies are not shown after a fault, and their names would resolve nowhere.
  m_dummyCount = 0;
  m_depth = 0;
  m_localsBase = 0;
  m_dummyBase = 0;
}

}  // namespace vexa
