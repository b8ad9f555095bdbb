// The platform as the measured programs see it: one installed package, five CoBA packages, and a log that formats every
// line and drops it. Defined in the programs themselves, in front of the host platform's libraries.
#ifndef BENCH_PLATFORM_H_
#define BENCH_PLATFORM_H_

namespace bench {

struct LogCount {
  long lines = 0;
  long bytes = 0;
};

// What has been logged since the start of the program.
const LogCount& Logged();

}  // namespace bench

#endif
