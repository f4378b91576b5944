#include "interp/name_pool.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "interp/preset_globals.h"
#include "values/builtin_names.h"
#include "values/keywords.h"

namespace vexa {

namespace {

constexpr std::size_t initialSlots = 1024;  // room for the permanent names and a usual program

}  // namespace

NameKey nameKeyOf(std::string_view word) {
  std::array<char, maxNameLength + 8> padded{};
  const std::size_t length = std::min<std::size_t>(word.size(), maxNameLength);
  std::memcpy(padded.data(), word.data(), length);
  return nameKeyOfPadded(padded.data(), length);
}

NamePool::NamePool() {
  setSlots(initialSlots);
  registerPresets();
  registerPermanentNames();
}

Symbol* NamePool::find(std::string_view word) const {
  if (word.empty() || word.size() > maxNameLength) return nullptr;
  return find(word.data(), word.size(), nameKeyOf(word));
}

Symbol* NamePool::intern(std::string_view word) {
  const NameKey key = nameKeyOf(word);
  if (Symbol* known = find(word.data(), word.size(), key)) return known;
  Symbol& symbol = m_symbols.emplace_back();
  std::memcpy(symbol.nameBuffer.data(), word.data(), word.size());
  symbol.nameLength = static_cast<std::uint8_t>(word.size());
  insert(&symbol, key);
  return &symbol;
}

void NamePool::insert(Symbol* symbol, NameKey key) {
  if (2 * (m_used + 1) > m_slots.size()) grow();
  m_slots[freeSlot(key)] = {key.prefix, symbol};
  ++m_used;
}

void NamePool::grow() {
  const std::vector<Slot> old = std::move(m_slots);
  setSlots(2 * old.size());
  for (const Slot& slot : old)
    if (slot.symbol) m_slots[freeSlot(nameKeyOf(slot.symbol->name()))] = slot;
}

void NamePool::setSlots(std::size_t count) {
  m_slots.assign(count, Slot{});
  m_shift = 64 - std::countr_zero(count);
}

std::size_t NamePool::freeSlot(NameKey key) const {
  std::size_t at = firstSlot(key);
  while (m_slots[at].symbol) at = nextSlot(at);
  return at;
}

Symbol* NamePool::registerName(std::string_view word, std::int16_t type, int number,
                               Category category) {
  Symbol* symbol = intern(word);
  symbol->category = category;
  symbol->type = type;
  symbol->number = number;
  symbol->state = 0;
  symbol->flags = 0;
  symbol->value = 0;
  symbol->matrix.reset();
  symbol->position = nullptr;
  symbol->text.reset();
  if (category == Category::variable) {
    symbol->olderGlobal = m_newestGlobal;
    symbol->newerGlobal = nullptr;
    (m_newestGlobal ? m_newestGlobal->newerGlobal : m_oldestGlobal) = symbol;
    m_newestGlobal = symbol;
    ++(type == typeMatrix ? m_matrixCount : m_floatCount);
  } else if (category == Category::userFunction) {
    m_functions.push_back(symbol);
  }
  return symbol;
}

void NamePool::remove(Symbol& symbol) {
  if (symbol.category == Category::variable) {
    (symbol.olderGlobal ? symbol.olderGlobal->newerGlobal : m_oldestGlobal) = symbol.newerGlobal;
    (symbol.newerGlobal ? symbol.newerGlobal->olderGlobal : m_newestGlobal) = symbol.olderGlobal;
    symbol.olderGlobal = symbol.newerGlobal = nullptr;
    --(symbol.type == typeMatrix ? m_matrixCount : m_floatCount);
  } else if (symbol.category == Category::userFunction) {
    std::erase(m_functions, &symbol);
  }
  symbol.category = Category::none;
  symbol.type = typeNone;
  symbol.matrix.reset();
  symbol.text.reset();
  symbol.position = nullptr;
}

void NamePool::resetForRun() {
  setSlots(initialSlots);
  m_used = 0;
  m_symbols.clear();
  m_functions.clear();
  m_oldestGlobal = m_newestGlobal = nullptr;
  m_floatCount = m_matrixCount = 0;
  // Reserved words and built-ins never change, so registering them anew is keeping them.
  registerPermanentNames();
  registerPresets();
}

std::vector<Symbol*> NamePool::userFunctions() const { return m_functions; }

void NamePool::registerPermanentNames() {
  for (std::size_t i = 0; i < keywords.size(); ++i)
    registerName(keywords[i], typeNone, static_cast<int>(i), Category::reserved);
  for (std::size_t i = 0; i < builtinNames.size(); ++i)
    registerName(builtinNames[i], typeNone, static_cast<int>(i), Category::builtin);
}

void NamePool::registerPresets() {
  for (const PresetGlobal& preset : presetGlobals) {
    Symbol* symbol = registerName(preset.name, typeFloat, presetNumber, Category::variable);
    symbol->state = statePreset;
    symbol->value = preset.value;
  }
}

}  // namespace vexa
