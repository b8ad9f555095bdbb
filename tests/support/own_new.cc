// The program's own operator new and delete. They are exported, so that shared libraries call them too.
#include "tests/support/own_new.h"

#include <cstdlib>
#include <new>

#pragma GCC visibility push(default)

void* operator new(std::size_t size) {
  void* memory = support::AllocationFails() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

// A sanitizer's own variant would return memory that the operator delete below cannot free.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#pragma GCC visibility pop
