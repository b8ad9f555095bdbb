// upgrade: replaces an installed package by another version.
#include "orvelbox/commands/changing_command.h"
#include "orvelbox/package/source.h"

namespace orvelbox {
namespace {

class UpgradeCommand : public ChangingCommand {
 public:
  UpgradeCommand()
      : ChangingCommand("upgrade", "Upgrade an installed package: UPGRADE, then CLEAN", "upgrade shop.opk") {
    AddArgument(PackageArgument(&package_));
  }

 private:
  int RunOn(const Session& session) const override {
    int status = kFailed;
    WithPackage(package_, session.trees().PlaceToUnpack(), [&](const std::filesystem::path& directory) {
      const Change change = Upgrade(session, directory);
      const std::string versions =
          WithVersion(change.previous->id, change.previous->version) + " to " + change.package.version;
      status = Tell(change, "upgraded " + versions + " (" + change.package.root + ")",
                    "not upgraded: " + versions + "; the version before is in place again");
    });
    return status;
  }

  std::string package_;
};

}  // namespace

std::unique_ptr<Command> MakeUpgrade() { return std::make_unique<UpgradeCommand>(); }

}  // namespace orvelbox
