// init: makes a device.
#include "orvelbox/check/platform_set.h"
#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/desk/tree.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// Takes back a device that could not be completed.
void RemoveDevice(const fs::path& directory, bool keep_directory) {
  if (!keep_directory) return RemoveTree(directory);
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) RemoveTree(entry.path());
}

class Init : public Command {
 public:
  Init() : Command("init", "Make a device", "init --platform tv-assemblies") {
    AddOption({"--platform", "DIR", "Copy the platform's assemblies (netcoreapp/ framework/ d.pc/ tvappapi/) from DIR",
               &platform_});
  }

  int Run(const GlobalOptions& global) const override {
    if (!platform_.empty()) RequirePlatform(platform_);
    const fs::path directory = ChooseDevice(global);
    const bool was_there = IsThere(directory);
    const host::Device device = host::CreateDevice(directory);
    const Activity activity(facts().name, !global.quiet);
    try {
      if (!platform_.empty()) CopyPlatform(platform_, device);
    } catch (const host::DeviceError&) {
      RemoveDevice(device.directory, was_there);
      throw;
    }
    Say("made the device " + device.directory.string());
    return kDone;
  }

 private:
  std::string platform_;
};

}  // namespace

std::unique_ptr<Command> MakeInit() { return std::make_unique<Init>(); }

}  // namespace orvelbox
