// bench_plugin pass|remove|add: the plug-in itself, over the fixed paths.
#include <cstdio>
#include <cstring>

#include "bench/measure.h"
#include "plugin/assembly_cache.h"
#include "plugin/cache_files.h"

int main(int argc, char** argv) {
  const char* const action = argc == 2 ? argv[1] : "";
  if (std::strcmp(action, "pass") == 0) {
    bench::Measure([] { gac("org.example.bench"); });
  } else if (std::strcmp(action, "remove") == 0) {
    bench::Measure([] { removedPkgFromTPACacheFile("org.example.bench"); });
  } else if (std::strcmp(action, "add") == 0) {
    bench::Measure([] { addPkgToTPACacheFile("org.example.bench"); });
  } else {
    std::fputs("usage: bench_plugin pass|remove|add\n", stderr);
    return 2;
  }
  return 0;
}
