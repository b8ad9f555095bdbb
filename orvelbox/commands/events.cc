// events: calls single hooks.
#include <boost/algorithm/string/case_conv.hpp>
#include <locale>

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

// Every event for every installed package.
Candidates EventsOfInstalled(const GlobalOptions& global) {
  const Candidates installed = InstalledIds(global);
  Candidates calls;
  for (const std::string name : kHookNames) {
    for (const Candidate& package : installed) {
      calls.push_back({boost::to_lower_copy(name, std::locale::classic()) + ":" + package.text, package.description});
    }
  }
  return calls;
}

int Call(const Session& session, const std::vector<RawEvent>& events) {
  const Effects effects = CallRawEvents(session, events);
  SayAll(DescribeHooksByPackage(effects.hooks));
  SayAll(DescribeEffects(effects, ""));
  if (effects.hooks.Succeeded()) return kDone;
  const std::size_t uncalled = events.size() - effects.hooks.results.size();
  Complain("events: failed, " + ReasonOfFailure(effects) +
           (uncalled == 0 ? "" : " (" + Counted(uncalled, "event was", "events were") + " not told to the plug-in)"));
  return kFailed;
}

}  // namespace

Command MakeEvents() {
  Command command("events", "Call single hooks in one process, and nothing else",
                  "events clean:org.example.shop uninstall:org.example.shop");
  Option call{"CALL", "",
              "EVENT:PKG, the event one of install, upgrade, removed, uninstall, recoveruninstall, clean, cleanup and "
              "undo, and a package id"};
  call.candidates = EventsOfInstalled;
  const auto& texts = command.Take<std::vector<std::string>>(call);
  command.check = [&texts](const GlobalOptions& /*global*/) { Parsed(texts); };
  RunOnSession(command, [&texts](const Session& session) { return Call(session, Parsed(texts)); });
  return command;
}

}  // namespace orvelbox
