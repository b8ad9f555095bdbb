// explain: the story of a log.
#include "orvelbox/history/explain.h"

#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"

namespace orvelbox {

Command MakeExplain() {
  Command command("explain", "Tell what the plug-in did to each package, and why", "explain tv.log",
                  "Names the lines of the log that each finding is concluded from.\n");
  const auto& json = command.Take<bool>(JsonFlag());
  const auto& log = command.Take<std::string>(
      Path({"LOG", "", "A log of any form that came off a device (the log of the present device)", {}, true}));
  command.run = [&json, &log](const GlobalOptions& global) {
    const std::string file = log.empty() ? OpenChosenDevice(global).Log().string() : log;
    const LogFacts facts = ReadLogFacts(file);
    SayListing(json, StoryJson(file, facts), DescribeStory(file, facts));
    return kDone;
  };
  return command;
}

}  // namespace orvelbox
