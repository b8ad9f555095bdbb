// One piece of work, measured in a process of its own.
#ifndef BENCH_MEASURE_H_
#define BENCH_MEASURE_H_

#include <functional>

namespace bench {

// Does the work and prints one line of JSON: the process's seconds of CPU time, allocations and growth of resident
// memory (KiB) meanwhile, and what was logged. Two calls of getppid enclose the work for those who count system calls,
// and it is called by `measured_work` for those who count instructions.
void Measure(const std::function<void()>& work);

}  // namespace bench

#endif
