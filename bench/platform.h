// The platform as the measured programs see it: one installed package, five CoBA packages, and a log and a trace that
// format every line and span and drop it. Defined in the programs themselves, in front of the host platform's
// libraries.
#ifndef BENCH_PLATFORM_H_
#define BENCH_PLATFORM_H_

namespace bench {

struct LogCount {
  long lines = 0;
  long bytes = 0;
  long spans = 0;  // their beginnings and their ends
};

// What has been logged since the start of the program.
const LogCount& Logged();

}  // namespace bench

#endif
