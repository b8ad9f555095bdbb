// What the commands share that change a device.
#ifndef ORVEL_ORVELBOX_COMMANDS_CHANGING_COMMAND_H_
#define ORVEL_ORVELBOX_COMMANDS_CHANGING_COMMAND_H_

#include <filesystem>
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

}  // namespace orvelbox

#endif
