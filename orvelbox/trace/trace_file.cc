// A file for a trace.
#include "orvelbox/trace/trace_file.h"

#include <unistd.h>

#include <fstream>

#include "platform/host/device_error.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

bool BeginsLikeATrace(const fs::path& file) {
  std::ifstream stream(file);
  const int first = stream.get();
  return stream.eof() || first == '[';
}

}  // namespace

void RequireTraceable(const fs::path& file) {
  const fs::path absolute = fs::absolute(file);
  const bool there = fs::exists(absolute);
  if (access(there ? absolute.c_str() : absolute.parent_path().c_str(), W_OK) != 0 || fs::is_directory(absolute)) {
    throw host::DeviceError(file.string() + ": no trace can be written there; name another file with --trace");
  }
  if (there && !BeginsLikeATrace(absolute)) {
    throw host::DeviceError(file.string() + ": is there and no trace; name another file with --trace");
  }
}

}  // namespace orvelbox
