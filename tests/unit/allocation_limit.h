// Makes memory run out: this program's operator new can be told how often it may still succeed.
#ifndef TESTS_UNIT_ALLOCATION_LIMIT_H_
#define TESTS_UNIT_ALLOCATION_LIMIT_H_

#include <functional>

// Runs `body`; after `count` allocations every further one throws std::bad_alloc. Answers whether one did that left
// `body`.
bool RunsOutOfMemoryAfter(int count, const std::function<void()>& body);

#endif
