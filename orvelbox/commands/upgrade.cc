// upgrade: replaces an installed package with another version.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeUpgrade() {
  Command command("upgrade", "Upgrade an installed package: UPGRADE, then CLEAN", "upgrade shop.opk");
  RunOnPackage(command, [](const Session& session, const std::filesystem::path& directory) {
    const Change change = Upgrade(session, directory);
    const std::string versions =
        WithVersion(change.previous->id, change.previous->version) + " to " + change.package.version;
    return PrintChange("upgrade", change, "upgraded " + versions + " (" + change.package.root + ")",
                       "not upgraded: " + versions + "; the version before is in place again");
  });
  return command;
}

}  // namespace orvelbox
