// bench_reference floor|limit pass|remove: runs the reference programs on the fixed paths.
#include <cstdio>
#include <cstring>

#include "bench/measure.h"
#include "bench/reference.h"

int main(int argc, char** argv) {
  const bool limit = argc == 3 && std::strcmp(argv[1], "limit") == 0;
  const bool floor = argc == 3 && std::strcmp(argv[1], "floor") == 0;
  const bench::Reference reference = limit ? bench::Reference::kLimit : bench::Reference::kFloor;
  if ((limit || floor) && std::strcmp(argv[2], "pass") == 0) {
    bench::Measure([=] { bench::ReferencePass(reference); });
  } else if ((limit || floor) && std::strcmp(argv[2], "remove") == 0) {
    bench::Measure([=] { bench::ReferenceRemove(reference); });
  } else {
    std::fputs("usage: bench_reference floor|limit pass|remove\n", stderr);
    return 2;
  }
  return 0;
}
