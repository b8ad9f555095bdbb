// A file in memory, for readers that take a path.
#ifndef FUZZ_MEMORY_FILE_H_
#define FUZZ_MEMORY_FILE_H_

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "base/unique_fd.h"
#include "fuzz/input.h"

namespace fuzz {

// Its name is unique to the process.
class MemoryFile {
 public:
  MemoryFile() : file_(memfd_create("input", MFD_CLOEXEC)) {}

  void Append(std::string_view bytes) const {
    const auto size = static_cast<ssize_t>(bytes.size());
    Require(write(file_.get(), bytes.data(), bytes.size()) == size, "there is memory");
  }
  std::string Path() const { return "/proc/self/fd/" + std::to_string(file_.get()); }

 private:
  UniqueFd file_;
};

}  // namespace fuzz

#endif
