// Telling of one event.
#include "orvelbox/commands/package_event.h"

#include "orvelbox/commands/changing_command.h"

namespace orvelbox {
namespace {

class PackageEventCommand : public ChangingCommand {
 public:
  explicit PackageEventCommand(const PackageEvent& event)
      : ChangingCommand(event.command, event.description, std::string(event.command) + " org.example.shop"),
        event_(event) {
    AddArgument(IdArgument(&id_));
  }

 private:
  int RunOn(const Session& session) const override {
    const Change change = CallHooks(session, event_.hooks, id_);
    const std::string name = WithVersion(change.package.id, change.package.version);
    return Tell(change, std::string(event_.done) + " " + name + event_.after,
                std::string("not done: ") + event_.command + " " + name);
  }

  PackageEvent event_;
  std::string id_;
};

}  // namespace

std::unique_ptr<Command> MakePackageEvent(const PackageEvent& event) {
  return std::make_unique<PackageEventCommand>(event);
}

}  // namespace orvelbox
