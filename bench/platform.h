// The platform for the measured programs: one installed package, five CoBA packages, and a log and a trace that format
// every line and span and drop it. The programs define these functions themselves, so that they replace the host
// platform's.
#ifndef BENCH_PLATFORM_H_
#define BENCH_PLATFORM_H_

namespace bench {

struct LogCount {
  long lines = 0;
  long bytes = 0;
  long spans = 0;  // begins and ends
};

// The counts since the start of the program.
const LogCount& Logged();

}  // namespace bench

#endif
