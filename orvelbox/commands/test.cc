// test: the whole lifecycle of a package on a throw-away device.
#include "orvelbox/check/platform_set.h"
#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/operations/lifecycle.h"
#include "platform/host/child_process.h"

namespace orvelbox {
namespace {

class Test : public Command {
 public:
  Test()
      : Command("test",
                "Let a package live through install, clean, undo, recovery, upgrade and uninstall on a throw-away "
                "device, and report what it leaves behind",
                "test --platform tv-assemblies shop-1.opk shop-2.opk") {
    AddOption(JsonFlag(&json_));
    AddOption({"--platform", "DIR", "Give the throw-away device the platform in DIR instead of that of the device",
               &platform_});
    AddArgument(PackageArgument(&package_));
    AddArgument({"NEW", "", "What it is upgraded to (itself)", &upgrade_, {}, true});
  }

  void Accept(const GlobalOptions& global) override { RequireOneOf(platform_, global); }

  int Run(const GlobalOptions& global) const override {
    const host::HeldSignals signals;  // so that an interruption leaves no device behind
    const ScratchDirectory scratch;
    const Activity activity(facts().name, !global.quiet);
    HookSettings settings = HookSettingsFor(global, MakeThrowAway(global, scratch.path() / "device"));
    settings.quiet = true;
    const Lifecycle lifecycle = RunLifecycle(settings, package_, upgrade_.empty() ? package_ : upgrade_);
    for (const LifecycleStep& step : lifecycle.steps) {
      if (!step.complaint.empty()) Complain(step.complaint);
    }
    SayListing(json_, ToJson(lifecycle), DescribeLifecycle(lifecycle));
    return lifecycle.Passed() ? kDone : kFailed;
  }

 private:
  // A device like the one that is asked for, without its packages; or one with the platform that is asked for.
  host::Device MakeThrowAway(const GlobalOptions& global, const std::filesystem::path& directory) const {
    if (!platform_.empty()) {
      RequirePlatform(platform_);
      host::Device device = host::CreateDevice(directory);
      CopyPlatform(platform_, device);
      return device;
    }
    const host::Device model = OpenChosenDevice(global);
    host::Device device = host::CreateDevice(directory, host::ReadConfig(model));
    CopyPlatform(model.OnDesk(host::kPlatformAssemblies), device);
    return device;
  }

  bool json_ = false;
  std::string platform_;
  std::string package_;
  std::string upgrade_;
};

}  // namespace

std::unique_ptr<Command> MakeTest() { return std::make_unique<Test>(); }

}  // namespace orvelbox
