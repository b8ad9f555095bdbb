// Counting what a measured program does.
#ifndef TESTS_PERFORMANCE_SYSTEM_CALLS_H_
#define TESTS_PERFORMANCE_SYSTEM_CALLS_H_

#include <optional>
#include <string>

struct MeasuredRun {
  long system_calls;   // between the program's two calls of getppid
  std::string report;  // what it printed
};

// Runs `program ACTION`, which measures as bench/measure.h says, under trace. Nothing where this machine does not let
// processes be traced. Throws std::runtime_error when the program fails.
std::optional<MeasuredRun> RunTraced(const std::string& program, const std::string& action);

#endif
