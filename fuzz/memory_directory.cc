// Directories in memory.
#include "fuzz/memory_directory.h"

#include <stdlib.h>

#include <string>

#include "fuzz/input.h"

namespace fuzz {

namespace fs = std::filesystem;

MemoryDirectory::MemoryDirectory() {
  const fs::path memory = "/dev/shm";
  std::error_code ignored;
  const fs::path above = fs::is_directory(memory, ignored) ? memory : fs::temp_directory_path();
  std::string pattern = (above / "orvel-fuzz-XXXXXX").string();
  Require(mkdtemp(pattern.data()) != nullptr, "there is a temporary directory");
  path_ = pattern;
}

MemoryDirectory::~MemoryDirectory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace fuzz
