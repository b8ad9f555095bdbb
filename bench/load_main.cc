// bench_load LIBRARY: loads and unloads a shared library and its dependencies once.
#include <dlfcn.h>

#include <cstdio>

#include "bench/measure.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: bench_load LIBRARY\n", stderr);
    return 2;
  }
  bench::Measure([&] {
    void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) std::fprintf(stderr, "bench_load: %s\n", dlerror());
    if (library != nullptr) dlclose(library);
  });
  return 0;
}
