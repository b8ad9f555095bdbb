// init: creates a device.
#include "orvelbox/check/platform_set.h"
#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/desk/tree.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// Removes a device that could not be completed.
void RemoveDevice(const fs::path& directory, bool keep_directory) {
  if (!keep_directory) return RemoveTree(directory);
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) RemoveTree(entry.path());
}

int Init(const fs::path& directory, const std::string& platform, bool quiet) {
  if (!platform.empty()) RequirePlatform(platform);
  const bool was_there = IsThere(directory);
  const host::Device device = host::CreateDevice(directory);
  const Activity activity("init", !quiet);
  try {
    if (!platform.empty()) CopyPlatform(platform, device);
  } catch (const host::DeviceError&) {
    RemoveDevice(device.directory, was_there);
    throw;
  }
  Say("made the device " + device.directory.string());
  return kDone;
}

}  // namespace

Command MakeInit() {
  Command command("init", "Make a device", "init --platform tv-assemblies");
  const auto& platform = command.Take<std::string>(
      Path({"--platform", "DIR", "Copy the platform's assemblies (netcoreapp/ framework/ d.pc/ tvappapi/) from DIR"}));
  command.run = [&platform](const GlobalOptions& global) { return Init(ChooseDevice(global), platform, global.quiet); };
  return command;
}

}  // namespace orvelbox
