// events: calls single hooks.
#include "orvelbox/commands/changing_command.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/operations/report.h"

namespace orvelbox {
namespace {

class Events : public ChangingCommand {
 public:
  Events()
      : ChangingCommand("events", "Call hooks one after the other in one process, and nothing else",
                        "events clean:org.example.shop uninstall:org.example.shop") {
    AddArgument(
        {"CALL", "",
         "EVENT:PKG, the event one of install, upgrade, removed, uninstall, recoveruninstall, clean, cleanup and "
         "undo, and a package id",
         &texts_});
  }

  void Accept(const GlobalOptions& /*global*/) override {
    for (const std::string& text : texts_) events_.push_back(ParseRawEvent(text));
  }

 private:
  int RunOn(const Session& session) const override {
    const Effects effects = CallRawEvents(session, events_);
    SayAll(DescribeHooksByPackage(effects.hooks));
    SayAll(DescribeEffects(effects, ""));
    if (effects.hooks.Succeeded()) return kDone;
    const std::size_t uncalled = events_.size() - effects.hooks.results.size();
    Complain("events: failed, " + ReasonOfFailure(effects) +
             (uncalled == 0 ? "" : " (" + std::to_string(uncalled) + " of the events were not told to the plug-in)"));
    return kFailed;
  }

  std::vector<std::string> texts_;
  std::vector<RawEvent> events_;
};

}  // namespace

std::unique_ptr<Command> MakeEvents() { return std::make_unique<Events>(); }

}  // namespace orvelbox
