// What the commands share that change a device or only call hooks on it.
#ifndef ORVEL_ORVELBOX_COMMANDS_CHANGING_COMMAND_H_
#define ORVEL_ORVELBOX_COMMANDS_CHANGING_COMMAND_H_

#include <memory>
#include <string>

#include "orvelbox/cli/command.h"
#include "orvelbox/operations/operations.h"

namespace orvelbox {

class ChangingCommand : public Command {
 public:
  using Command::Command;
  int Run(const GlobalOptions& global) const final;

 protected:
  // Does it on the opened device and returns the exit status.
  virtual int RunOn(const Session& session) const = 0;

  // Says what happened, below the headline `done` or `failed`, and complains of a failure. Returns the exit status.
  int Tell(const Change& change, const std::string& done, const std::string& failed) const;
};

// A command that only calls hooks for an installed package.
struct PackageEvent {
  const char* command;
  const char* description;
  const char* done;        // "cleaned", to be followed by the package
  const char* after = "";  // what follows the package
  HookNames hooks;
};

std::unique_ptr<Command> MakePackageEvent(const PackageEvent& event);

}  // namespace orvelbox

#endif
