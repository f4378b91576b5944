// Row numbers kept in the elements of a matrix or work vector: two of 32 bits to an element, so
// that the interchanges of a factorisation can be stored as a variable of the language. There, and
// in the files to which such variables go, rows count from 1; here from 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace vexa {

class PivotList {
 public:
  // The elements must outlive the list; elementsFor(n) of them hold n numbers.
  explicit PivotList(std::span<double> elements) : m_elements(elements) {}
  static constexpr std::size_t elementsFor(std::size_t n) { return n / 2 + 1; }

  std::size_t capacity() const { return 2 * m_elements.size(); }

  int operator[](int k) const {
    // Without a sign: a list from a file may hold anything.
    std::uint32_t number;
    std::memcpy(&number, place(k), sizeof number);
    return static_cast<int>(number - 1);
  }
  void set(int k, int row) {
    const auto number = static_cast<std::uint32_t>(row) + 1;
    std::memcpy(place(k), &number, sizeof number);
  }

 private:
  std::byte* place(int k) const {
    return reinterpret_cast<std::byte*>(m_elements.data()) +
           static_cast<std::size_t>(k) * sizeof(std::int32_t);
  }

  std::span<double> m_elements;
};

}  // namespace vexa
