// A device's "/" in a temporary directory.
#include "tests/support/device_root.h"

#include <filesystem>

#include "tests/support/child.h"
#include "tests/support/files.h"

namespace support {

void OnDevice(const std::function<void()>& body) {
  const TempDir root;
  for (const char* directory :
       {kCoreDirectory, kFrameworkDirectory, kDpcDirectory, kTvAppApiDirectory, kCacheDirectory}) {
    std::filesystem::create_directories(root.path() / std::filesystem::path(directory).relative_path());
  }
  WithFixedPaths(root.path(), body);
}

}  // namespace support
