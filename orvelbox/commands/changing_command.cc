// Opening the device for a change, and reporting the outcome.
#include "orvelbox/commands/changing_command.h"

#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/operations/report.h"

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

int ChangingCommand::Run(const GlobalOptions& global) const {
  const Session session(HookSettingsFor(global, OpenChosenDevice(global)));
  SayAll(session.mended());
  const Activity activity(facts().name, !global.quiet);
  return RunOn(session);
}

int ChangingCommand::Tell(const Change& change, const std::string& done, const std::string& failed) const {
  Say(change.Done() ? done : failed);
  SayAll(DescribeChange(change));
  if (change.Done()) return kDone;
  Complain(ComplaintAbout(facts().name, change));
  return kFailed;
}

std::unique_ptr<Command> MakePackageEvent(const PackageEvent& event) {
  return std::make_unique<PackageEventCommand>(event);
}

}  // namespace orvelbox
