// upgrade: replaces an installed package by another version.
#include "orvelbox/commands/changing_command.h"
#include "orvelbox/package/source.h"

namespace orvelbox {

Command MakeUpgrade() {
  Command command("upgrade", "Upgrade an installed package: UPGRADE, then CLEAN", "upgrade shop.opk");
  const auto& package = command.Take<std::string>(PackageArgument());
  RunOnSession(command, [&package](const Session& session) {
    int status = kFailed;
    WithPackage(package, session.trees().PlaceToUnpack(), [&](const std::filesystem::path& directory) {
      const Change change = Upgrade(session, directory);
      const std::string versions =
          WithVersion(change.previous->id, change.previous->version) + " to " + change.package.version;
      status = Tell("upgrade", change, "upgraded " + versions + " (" + change.package.root + ")",
                    "not upgraded: " + versions + "; the version before is in place again");
    });
    return status;
  });
  return command;
}

}  // namespace orvelbox
