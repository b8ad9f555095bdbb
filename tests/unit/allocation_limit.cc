// When the program's operator new fails.
#include "tests/unit/allocation_limit.h"

#include <new>

#include "tests/support/own_new.h"

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

bool support::AllocationFails() {
  if (allocations_left == 0) return true;
  if (allocations_left > 0) --allocations_left;
  return false;
}
