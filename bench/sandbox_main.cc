// bench_sandbox ROOT COMMAND…: runs a command in which the fixed paths show the device directory ROOT.
#include <unistd.h>

#include <cstdio>
#include <exception>

#include "platform/host/fixed_paths.h"

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: bench_sandbox ROOT COMMAND…\n", stderr);
    return 2;
  }
  try {
    const host::ChildOutcome outcome = host::RunWithFixedPaths(argv[1], [&] {
      execvp(argv[2], argv + 2);
      std::perror(argv[2]);
      return 127;
    });
    return outcome.signalled ? 128 + outcome.code : outcome.code;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_sandbox: %s\n", error.what());
    return 1;
  }
}
