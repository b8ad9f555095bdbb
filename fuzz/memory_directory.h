// A place for files that are written anew for every input.
#ifndef FUZZ_MEMORY_DIRECTORY_H_
#define FUZZ_MEMORY_DIRECTORY_H_

#include <filesystem>

namespace fuzz {

// A new directory, in memory where there is such a place, removed with all it holds at the end.
class MemoryDirectory {
 public:
  MemoryDirectory();
  ~MemoryDirectory();
  MemoryDirectory(const MemoryDirectory&) = delete;
  MemoryDirectory& operator=(const MemoryDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace fuzz

#endif
