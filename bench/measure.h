// Measures one piece of work in a separate process.
#ifndef BENCH_MEASURE_H_
#define BENCH_MEASURE_H_

#include <functional>

namespace bench {

// Runs the work and prints one line of JSON: CPU seconds, allocations and growth of resident memory (KiB) during it,
// and the log counts. Two calls of getppid mark the work for tools that count system calls; the function
// `measured_work` calls it, for tools that count instructions.
void Measure(const std::function<void()>& work);

}  // namespace bench

#endif
