// A directory for files that every input writes anew.
#ifndef FUZZ_MEMORY_DIRECTORY_H_
#define FUZZ_MEMORY_DIRECTORY_H_

#include <filesystem>

namespace fuzz {

// A new directory, in memory if possible. The destructor removes it with its content.
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
