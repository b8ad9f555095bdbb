// Counts the system calls of a measured program.
#ifndef TESTS_PERFORMANCE_SYSTEM_CALLS_H_
#define TESTS_PERFORMANCE_SYSTEM_CALLS_H_

#include <optional>
#include <string>

struct MeasuredRun {
  long system_calls;   // between the program's two calls of getppid
  std::string report;  // its output
};

// Traces `program ACTION`, which measures as described in bench/measure.h. Nothing when this machine does not allow
// tracing. Throws std::runtime_error when the program fails.
std::optional<MeasuredRun> RunTraced(const std::string& program, const std::string& action);

#endif
