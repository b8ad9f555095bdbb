// uninstall: removes a package from the device.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeUninstall() {
  Command command("uninstall", "Uninstall a package: UNINSTALL, then CLEAN", "uninstall org.example.shop");
  const auto& id = command.Take<std::string>(IdArgument());
  RunOnSession(command, [&id](const Session& session) {
    const Change change = Uninstall(session, id);
    const std::string name = WithVersion(change.package.id, change.package.version);
    return PrintChange("uninstall", change, "uninstalled " + name, "not uninstalled: " + name + "; it stays installed");
  });
  return command;
}

}  // namespace orvelbox
