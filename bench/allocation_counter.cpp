#include "allocation_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> allocations = 0;
}

void* operator new(std::size_t size) {
  ++allocations;
  if (void* block = std::malloc(size ? size : 1)) return block;
  throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size ? size : 1);
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace vexa {

std::size_t allocationCount() { return allocations; }

}  // namespace vexa
