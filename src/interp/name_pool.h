#pragma once

// One table for every name: reserved words, built-ins, user functions, global variables and the
// preset globals whose names end in "#". A name has one meaning here; locals and dummy variables
// stand apart (call_stack.h), and each symbol remembers the newest of those that carries its name,
// so that a word is resolved with one look-up.

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "values/matrix.h"

namespace vexa {

inline constexpr int maxNameLength = 25;

enum class Category : std::int16_t {
  none = 0,  // the word is known (a local carries it) but has no entry in the name table
  reserved = 1,
  local = 2,  // reported by name classification only
  variable = 3,
  userFunction = 4,
  builtin = 5,
};

inline constexpr std::int16_t typeNone = 0;
inline constexpr std::int16_t typeFloat = 1;
inline constexpr std::int16_t typeMatrix = 3;

inline constexpr int presetNumber = -10;
// State bytes.
inline constexpr char stateUpdated = 'M';  // function registered by a program update
inline constexpr char statePreset = 'I';   // preset global; internal entries of catalogs
inline constexpr char stateCalled = 1;     // active caller, or called before
inline constexpr char stateOwnsMatrix = '*';
// Flags byte of a float that holds whole numbers.
inline constexpr char flagWhole = 'W';

// A prepared program text. Functions keep theirs alive, so that a position never dangles.
// The text is followed by textPadding NULs: the scanner reads words of eight bytes.
inline constexpr std::size_t textPadding = 16;

struct Symbol {
  std::array<char, maxNameLength + 1> nameBuffer{};
  std::uint8_t nameLength = 0;
  Category category = Category::none;
  std::int16_t type = typeNone;
  int number = 0;  // keyword index, built-in row, declaration line or presetNumber
  char state = 0;
  char flags = 0;
  double value = 0;
  std::unique_ptr<Matrix> matrix;           // of a global matrix
  const char* position = nullptr;           // of a user function: just after its name
  std::shared_ptr<const std::string> text;  // the program text that `position` points into
  int localTop = -1;                        // newest local record of this name, in any frame
  int dummyTop = -1;                        // newest dummy variable of this name, in any frame
  Symbol* olderGlobal = nullptr;            // neighbours in the order in which globals were made
  Symbol* newerGlobal = nullptr;

  std::string_view name() const { return {nameBuffer.data(), nameLength}; }
  bool isGlobal() const { return category == Category::variable; }
};

// A word as the table keys it: its first eight bytes, zero-filled, and its hash, of which the high
// bits are the well mixed ones.
struct NameKey {
  std::uint64_t prefix = 0;
  std::uint64_t hash = 0;
};

inline constexpr std::size_t prefixLength = 8;

// The bytes that a word of 0 to 7 letters fills of its prefix.
inline constexpr std::array<std::uint64_t, prefixLength> prefixMasks = [] {
  std::array<std::uint64_t, prefixLength> masks{};
  for (std::size_t length = 1; length < prefixLength; ++length)
    masks[length] = masks[length - 1] << 8 | 0xFF;
  return masks;
}();

// `word` must be followed by at least eight readable bytes.
inline NameKey nameKeyOfPadded(const char* word, std::size_t length) {
  constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15u;
  std::uint64_t prefix;
  std::memcpy(&prefix, word, prefixLength);
  if (length < prefixLength) prefix &= prefixMasks[length];
  std::uint64_t hash = prefix * multiplier;
  for (std::size_t i = prefixLength; i < length; ++i)
    hash = (hash ^ static_cast<unsigned char>(word[i])) * multiplier;
  return {prefix, hash};
}
NameKey nameKeyOf(std::string_view word);

class NamePool {
 public:
  NamePool();

  // The symbol of a word, or null when nothing carries it. Words longer than maxNameLength are
  // never found.
  Symbol* find(const char* word, std::size_t length, NameKey key) const {
    for (std::size_t at = firstSlot(key);; at = nextSlot(at)) {
      const Slot& slot = m_slots[at];
      if (slot.prefix == key.prefix && slot.symbol) {
        // A shorter word fills its prefix up with NULs, which no word contains.
        if (length < prefixLength || sameTail(*slot.symbol, word, length)) return slot.symbol;
      }
      if (!slot.symbol) return nullptr;
    }
  }
  // The same for a word shorter than its prefix.
  Symbol* findShort(NameKey key) const {
    for (std::size_t at = firstSlot(key);; at = nextSlot(at)) {
      const Slot& slot = m_slots[at];
      if (slot.prefix == key.prefix) return slot.symbol;
      if (!slot.symbol) return nullptr;
    }
  }
  Symbol* find(std::string_view word) const;
  // The symbol of a word, made with category none when it is new. The word is at most
  // maxNameLength long.
  Symbol* intern(std::string_view word);

  // Enters a name with a zeroed record. A global variable joins the end of the list of globals.
  Symbol* registerName(std::string_view word, std::int16_t type, int number, Category category);
  // Removes a name's entry; a global's matrix is freed. The word stays known.
  void remove(Symbol& symbol);
  // Removes everything that is not a reserved word or a built-in, then registers the presets.
  void resetForRun();

  Symbol* oldestGlobal() const { return m_oldestGlobal; }
  // Global floats, presets included.
  int floatCount() const { return m_floatCount; }
  int matrixCount() const { return m_matrixCount; }
  std::vector<Symbol*> userFunctions() const;  // in the order of their registration

 private:
  struct Slot {
    std::uint64_t prefix = 0;
    Symbol* symbol = nullptr;
  };
  static bool sameTail(const Symbol& symbol, const char* word, std::size_t length) {
    return symbol.nameLength == length &&
           std::memcmp(symbol.nameBuffer.data() + prefixLength, word + prefixLength,
                       length - prefixLength) == 0;
  }
  std::size_t firstSlot(NameKey key) const { return key.hash >> m_shift; }
  std::size_t nextSlot(std::size_t at) const { return (at + 1) & (m_slots.size() - 1); }
  void setSlots(std::size_t count);  // a power of two; empty ones
  std::size_t freeSlot(NameKey key) const;
  void registerPermanentNames();
  void registerPresets();
  void insert(Symbol* symbol, NameKey key);
  void grow();

  std::vector<Slot> m_slots;
  int m_shift = 0;  // what is left of a hash numbers the slots
  std::size_t m_used = 0;
  std::deque<Symbol> m_symbols;
  std::vector<Symbol*> m_functions;
  Symbol* m_oldestGlobal = nullptr;
  Symbol* m_newestGlobal = nullptr;
  int m_floatCount = 0;
  int m_matrixCount = 0;
};

}  // namespace vexa
