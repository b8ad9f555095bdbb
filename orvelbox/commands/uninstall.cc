// uninstall: takes a package off the device.
#include "orvelbox/commands/changing_command.h"

namespace orvelbox {
namespace {

class UninstallCommand : public ChangingCommand {
 public:
  UninstallCommand()
      : ChangingCommand("uninstall", "Uninstall a package: UNINSTALL, then CLEAN", "uninstall org.example.shop") {
    AddArgument(IdArgument(&id_));
  }

 private:
  int RunOn(const Session& session) const override {
    const Change change = Uninstall(session, id_);
    const std::string name = WithVersion(change.package.id, change.package.version);
    return Tell(change, "uninstalled " + name, "not uninstalled: " + name + "; it stays installed");
  }

  std::string id_;
};

}  // namespace

std::unique_ptr<Command> MakeUninstall() { return std::make_unique<UninstallCommand>(); }

}  // namespace orvelbox
