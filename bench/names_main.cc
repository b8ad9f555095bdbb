// bench_names ROOT PLATFORM…: prints the package's DLLs whose names occur below the platform's directories, written
// with the standard library only.
#include <cstdio>
#include <filesystem>
#include <string>
#include <unordered_set>

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: bench_names ROOT PLATFORM…\n", stderr);
    return 2;
  }
  std::unordered_set<std::string> names;
  for (int directory = 2; directory < argc; ++directory) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(argv[directory])) {
      if (entry.is_regular_file()) names.insert(entry.path().filename().string());
    }
  }
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(argv[1])) {
    if (entry.path().extension() != ".dll" || !entry.is_regular_file()) continue;
    if (names.count(entry.path().filename().string()) != 0) std::puts(entry.path().c_str());
  }
  return 0;
}
