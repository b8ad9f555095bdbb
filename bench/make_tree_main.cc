// bench_tree make|restore realistic|FILES DUPLICATES ROOT; bench_tree cache ENTRIES PERCENT FILE.
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include "bench/device_tree.h"

namespace {

bench::TreeShape ShapeOf(const std::string& files, const std::string& duplicates) {
  if (files == "realistic") return bench::RealisticShape();
  return bench::LargeShape(std::stoi(files), std::stoi(duplicates));
}

int Run(const std::string& action, const std::string& first, const std::string& second, const std::string& path) {
  if (action == "make") {
    bench::MakeTree(path, ShapeOf(first, second));
  } else if (action == "restore") {
    bench::Restore(path, ShapeOf(first, second));
  } else {
    std::ofstream(path) << bench::CacheText(std::stoi(first), std::stoi(second));
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fputs("usage: bench_tree make|restore realistic|FILES DUPLICATES ROOT, or cache ENTRIES PERCENT FILE\n",
               stderr);
    return 2;
  }
  try {
    return Run(argv[1], argv[2], argv[3], argv[4]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_tree: %s\n", error.what());
    return 1;
  }
}
