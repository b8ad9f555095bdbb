// install: puts a package on the device.
#include "orvelbox/commands/changing_command.h"
#include "orvelbox/package/source.h"

namespace orvelbox {
namespace {

class InstallCommand : public ChangingCommand {
 public:
  InstallCommand() : ChangingCommand("install", "Install a package: INSTALL, then CLEAN", "install shop.opk") {
    AddArgument(PackageArgument(&package_));
  }

 private:
  int RunOn(const Session& session) const override {
    int status = kFailed;
    WithPackage(package_, session.trees().PlaceToUnpack(), [&](const std::filesystem::path& directory) {
      const Change change = Install(session, directory);
      const std::string name = WithVersion(change.package.id, change.package.version);
      status = Tell(change, "installed " + name + " (" + change.package.root + ")", "not installed: " + name);
    });
    return status;
  }

  std::string package_;
};

}  // namespace

std::unique_ptr<Command> MakeInstall() { return std::make_unique<InstallCommand>(); }

}  // namespace orvelbox
