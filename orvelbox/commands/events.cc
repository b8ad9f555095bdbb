// events: calls single hooks.
#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/operations/report.h"

namespace orvelbox {
namespace {

std::vector<RawEvent> Parsed(const std::vector<std::string>& texts) {
  std::vector<RawEvent> events;
  events.reserve(texts.size());
  for (const std::string& text : texts) events.push_back(ParseRawEvent(text));
  return events;
}

int Call(const Session& session, const std::vector<RawEvent>& events) {
  const Effects effects = CallRawEvents(session, events);
  SayAll(DescribeHooksByPackage(effects.hooks));
  SayAll(DescribeEffects(effects, ""));
  if (effects.hooks.Succeeded()) return kDone;
  const std::size_t uncalled = events.size() - effects.hooks.results.size();
  Complain("events: failed, " + ReasonOfFailure(effects) +
           (uncalled == 0 ? "" : " (" + std::to_string(uncalled) + " of the events were not told to the plug-in)"));
  return kFailed;
}

}  // namespace

Command MakeEvents() {
  Command command("events", "Call hooks one after the other in one process, and nothing else",
                  "events clean:org.example.shop uninstall:org.example.shop");
  const auto& texts = command.Take<std::vector<std::string>>(
      {"CALL", "",
       "EVENT:PKG, the event one of install, upgrade, removed, uninstall, recoveruninstall, clean, cleanup and undo, "
       "and a package id"});
  command.check = [&texts](const GlobalOptions& /*global*/) { Parsed(texts); };
  RunOnSession(command, [&texts](const Session& session) { return Call(session, Parsed(texts)); });
  return command;
}

}  // namespace orvelbox
