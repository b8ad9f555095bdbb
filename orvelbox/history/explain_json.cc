// The story as JSON.
#include <nlohmann/json.hpp>

#include "orvelbox/history/explain.h"
#include "platform/host/json.h"

namespace orvelbox {
namespace {

host::Json OrNull(const std::string& text) { return text.empty() ? host::Json() : host::Json(text); }

host::Json ToJson(const Finding& finding) {
  const bool of_entry = finding.what == What::kErased || finding.what == What::kErasing;
  const bool with_text =
      finding.what == What::kError || finding.what == What::kRefused || finding.what == What::kRemovalFailed;
  host::Json json = {{"what", NameOf(finding.what)}};
  if (!finding.path.empty()) json[finding.what == What::kRunAlready ? "package" : "path"] = finding.path;
  if (!finding.origin.empty()) json[of_entry ? "entry" : "origin"] = finding.origin;
  if (with_text) json["text"] = finding.text;
  if (!finding.time.empty()) json["time"] = finding.time;
  json["lines"] = finding.lines;
  return json;
}

host::Json ToJson(const Pass& pass) {
  host::Json json = {{"event", OrNull(pass.event)},
                     {"package", OrNull(pass.package)},
                     {"process", OrNull(pass.process)},
                     {"first", pass.first},
                     {"last", pass.last},
                     {"begun", pass.begun},
                     {"ended", pass.ended},
                     {"mixed", pass.tangled},
                     {"hooks", host::Json::array()},
                     {"findings", host::Json::array()}};
  for (const auto& [hook, line] : pass.hooks) json["hooks"].push_back({{"hook", hook}, {"line", line}});
  for (const Finding& finding : pass.findings) json["findings"].push_back(ToJson(finding));
  json["unknown"] = UnknownOf(pass);
  return json;
}

}  // namespace

std::string StoryJson(const std::string& log, const LogFacts& facts) {
  host::Json json = {{"log", log}, {"lines", facts.lines}, {"passes", host::Json::array()}};
  for (const Pass& pass : facts.passes) json["passes"].push_back(ToJson(pass));
  json["unclear"] = facts.unclear_lines;
  json["unread_from"] = facts.unread_from == 0 ? host::Json() : host::Json(facts.unread_from);
  json["unknown"] = UnknownOf(log, facts);
  return host::AsciiJson(json);
}

}  // namespace orvelbox
