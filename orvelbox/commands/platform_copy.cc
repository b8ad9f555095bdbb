// Copying platforms.
#include "orvelbox/commands/platform_copy.h"

#include "orvelbox/desk/tree.h"

namespace orvelbox {

void CopyPlatform(const std::filesystem::path& platform, const host::Device& device) {
  for (const char* name : host::kPlatformAssemblyDirectories) {
    if (IsThere(platform / name)) CopyTree(platform / name, device.OnDesk(host::kPlatformAssemblies) / name);
  }
}

}  // namespace orvelbox
