// install: puts a package on the device.
#include "orvelbox/commands/changing_command.h"
#include "orvelbox/package/source.h"

namespace orvelbox {

Command MakeInstall() {
  Command command("install", "Install a package: INSTALL, then CLEAN", "install shop.opk");
  const auto& package = command.Take<std::string>(PackageArgument());
  RunOnSession(command, [&package](const Session& session) {
    int status = kFailed;
    WithPackage(package, session.trees().PlaceToUnpack(), [&](const std::filesystem::path& directory) {
      const Change change = Install(session, directory);
      const std::string name = WithVersion(change.package.id, change.package.version);
      status =
          Tell("install", change, "installed " + name + " (" + change.package.root + ")", "not installed: " + name);
    });
    return status;
  });
  return command;
}

}  // namespace orvelbox
