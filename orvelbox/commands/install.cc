// install: installs a package on the device.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeInstall() {
  Command command("install", "Install a package: INSTALL, then CLEAN", "install shop.opk");
  RunOnPackage(command, [](const Session& session, const std::filesystem::path& directory) {
    const Change change = Install(session, directory);
    const std::string name = WithVersion(change.package.id, change.package.version);
    return PrintChange("install", change, "installed " + name + " (" + change.package.root + ")",
                       "not installed: " + name);
  });
  return command;
}

}  // namespace orvelbox
