// log: the device's log.
#include <cstdlib>

#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/history/log_view.h"

namespace orvelbox {
namespace {

class Log : public Command {
 public:
  Log() : Command("log", "Show the device's log", "log --priority I --follow") {
    AddOption(JsonFlag(&json_));
    AddOption({"--follow", "", "Go on with every record that comes", &follow_});
    AddOption({"--tag", "TAG", "Only records under this tag", &tag_});
    AddOption({"--priority", "P", "Only records of this priority and above (D, I, E)", &priority_, {"D", "I", "E"}});
  }

  int Run(const GlobalOptions& global) const override {
    const bool colour = ColourWanted(std::getenv("NO_COLOR"));
    ShowLog(OpenChosenDevice(global), {{tag_, priority_.front()}, follow_, colour, json_});
    return kDone;
  }

 private:
  bool json_ = false;
  bool follow_ = false;
  std::string tag_;
  std::string priority_ = "D";
};

}  // namespace

std::unique_ptr<Command> MakeLog() { return std::make_unique<Log>(); }

}  // namespace orvelbox
