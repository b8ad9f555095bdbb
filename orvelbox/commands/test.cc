// test: runs the whole lifecycle of a package on a temporary device.
#include "orvelbox/check/platform_set.h"
#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/operations/lifecycle.h"
#include "platform/host/child_process.h"

namespace orvelbox {
namespace {

// A device like the selected one, without its packages; or one with the platform given by the option.
host::Device MakeTemporaryDevice(const GlobalOptions& global, const std::string& platform,
                                 const std::filesystem::path& directory) {
  if (!platform.empty()) {
    RequirePlatform(platform);
    host::Device device = host::CreateDevice(directory);
    CopyPlatform(platform, device);
    return device;
  }
  const host::Device model = OpenChosenDevice(global);
  host::Device device = host::CreateDevice(directory, host::ReadConfig(model));
  CopyPlatform(model.OnDesk(host::kPlatformAssemblies), device);
  return device;
}

Lifecycle Test(const GlobalOptions& global, const std::string& platform, const std::string& package,
               const std::string& upgrade) {
  const host::HeldSignals signals;  // blocks interruptions, which would leave the device behind
  const TemporaryDirectory temporary;
  const Activity activity("test", !global.quiet);
  HookSettings settings = HookSettingsFor(global, MakeTemporaryDevice(global, platform, temporary.path() / "device"));
  settings.quiet = true;
  return RunLifecycle(settings, package, upgrade.empty() ? package : upgrade);
}

}  // namespace

Command MakeTest() {
  Command command("test", "Try a package's whole life on a throw-away device",
                  "test --platform tv-assemblies shop-1.opk shop-2.opk",
                  "It lives through install, clean, undo, recovery, upgrade and uninstall; what it leaves behind is "
                  "reported.\n");
  const auto& json = command.Take<bool>(JsonFlag());
  const auto& platform = command.Take<std::string>(
      Path({"--platform", "DIR", "Give the throw-away device the platform in DIR instead of that of the device"}));
  const auto& package = command.Take<std::string>(PackageArgument());
  const auto& upgrade = command.Take<std::string>(Path({"NEW", "", "What it is upgraded to (itself)", {}, true}));
  command.check = [&platform](const GlobalOptions& global) { RequireOneOf(platform, global); };
  command.run = [&json, &platform, &package, &upgrade](const GlobalOptions& global) {
    const Lifecycle lifecycle = Test(global, platform, package, upgrade);
    for (const LifecycleStep& step : lifecycle.steps) {
      if (!step.complaint.empty()) Complain(step.complaint);
    }
    SayListing(json, ToJson(lifecycle), DescribeLifecycle(lifecycle));
    return lifecycle.Passed() ? kDone : kFailed;
  };
  return command;
}

}  // namespace orvelbox
