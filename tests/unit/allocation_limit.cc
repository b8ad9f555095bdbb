// The program's own operator new.
#include "tests/unit/allocation_limit.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int kUnlimited = -1;
thread_local int allocations_left = kUnlimited;

struct Limit {
  explicit Limit(int count) { allocations_left = count; }
  ~Limit() { allocations_left = kUnlimited; }
  Limit(const Limit&) = delete;
  Limit& operator=(const Limit&) = delete;
};

}  // namespace

bool RunsOutOfMemoryAfter(int count, const std::function<void()>& body) {
  const Limit limit(count);
  try {
    body();
  } catch (const std::bad_alloc&) {
    return true;
  }
  return false;
}

void* operator new(std::size_t size) {
  if (allocations_left == 0) throw std::bad_alloc();
  if (allocations_left > 0) --allocations_left;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

// A sanitizer's own form would hand out memory that the operator delete below cannot take back.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
