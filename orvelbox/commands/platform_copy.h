// The assemblies of a platform on a new device.
#ifndef ORVEL_ORVELBOX_COMMANDS_PLATFORM_COPY_H_
#define ORVEL_ORVELBOX_COMMANDS_PLATFORM_COPY_H_

#include <filesystem>

#include "platform/host/device.h"

namespace orvelbox {

// Copies the directories of platform assemblies that `platform` has. Throws host::DeviceError.
void CopyPlatform(const std::filesystem::path& platform, const host::Device& device);

}  // namespace orvelbox

#endif
