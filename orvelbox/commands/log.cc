// log: shows the device's log.
#include <cstdlib>

#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/history/log_view.h"

namespace orvelbox {

Command MakeLog() {
  Command command("log", "Show the device's log", "log --priority I --follow");
  const auto& json = command.Take<bool>(JsonFlag());
  const auto& follow = command.Take<bool>({"--follow", "", "Go on with every record that comes"});
  const auto& tag = command.Take<std::string>({"--tag", "TAG", "Only records under this tag"});
  const auto& priority = command.Take<std::string>(
      {"--priority", "P", "Only records of this priority and above (D, I, E)", {"D", "I", "E"}}, "D");
  command.run = [&json, &follow, &tag, &priority](const GlobalOptions& global) {
    const bool colour = ColourWanted(std::getenv("NO_COLOR"));
    ShowLog(OpenChosenDevice(global), {{tag, priority.front()}, follow, colour, json});
    return kDone;
  };
  return command;
}

}  // namespace orvelbox
