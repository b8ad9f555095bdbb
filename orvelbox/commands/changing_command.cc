// Opening the device for a change, and reporting the outcome.
#include "orvelbox/commands/changing_command.h"

#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/operations/report.h"

namespace orvelbox {

void RunOnSession(Command& command, const std::function<int(const Session&)>& change) {
  command.run = [change, name = command.facts().name](const GlobalOptions& global) {
    const Session session(HookSettingsFor(global, OpenChosenDevice(global)));
    SayAll(session.mended());
    const Activity activity(name, !global.quiet);
    return change(session);
  };
}

int Tell(const std::string& command, const Change& change, const std::string& done, const std::string& failed) {
  Say(change.Done() ? done : failed);
  SayAll(DescribeChange(change));
  if (change.Done()) return kDone;
  Complain(ComplaintAbout(command, change));
  return kFailed;
}

Command MakePackageEvent(const std::string& name, const std::string& description, const std::string& done,
                         const std::string& after, HookNames hooks) {
  Command command(name, description, name + " org.example.shop");
  const auto& id = command.Take<std::string>(IdArgument());
  RunOnSession(command, [=, &id](const Session& session) {
    const Change change = CallHooks(session, hooks, id);
    const std::string package = WithVersion(change.package.id, change.package.version);
    return Tell(name, change, done + " " + package + after, "not done: " + name + " " + package);
  });
  return command;
}

}  // namespace orvelbox
