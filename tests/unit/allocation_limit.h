// Makes memory run out: limits the number of allocations for which this program's operator new succeeds.
#ifndef TESTS_UNIT_ALLOCATION_LIMIT_H_
#define TESTS_UNIT_ALLOCATION_LIMIT_H_

#include <functional>

// Runs `body`; after `count` allocations every further one throws std::bad_alloc. Returns whether such an exception
// left `body`.
bool RunsOutOfMemoryAfter(int count, const std::function<void()>& body);

#endif
