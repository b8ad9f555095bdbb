// Opening the device for a change, and telling what came of it.
#include "orvelbox/commands/changing_command.h"

#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/operations/report.h"

namespace orvelbox {

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

}  // namespace orvelbox
