// The results of a check as JSON, and as a SARIF log.
#include "platform/host/json.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "base/affix.h"
#include "orvelbox/check/result.h"
#include "platform/host/percent_encoding.h"

namespace orvelbox {
namespace {

void AddCopy(const std::string& prefix, const DllCopy& copy, host::Json& json) {
  if (copy.size) json[prefix + "size"] = *copy.size;
  if (copy.version) json[prefix + "assembly_version"] = ToString(*copy.version);
}

host::Json ToJson(const CheckedDll& dll) {
  host::Json json = {{"path", dll.path}, {"verdict", ToString(dll.verdict)}};
  if (!dll.reason.empty()) json["reason"] = dll.reason;
  if (!dll.origin.empty()) json["origin"] = dll.origin;
  AddCopy("", dll.own, json);
  AddCopy("origin_", dll.provided, json);
  if (dll.IsNewer()) json["newer_than_origin"] = true;
  return json;
}

constexpr const char* kRemovedRule = "duplicate-removed";
constexpr const char* kReportedRule = "duplicate-reported";

host::Json Rule(const char* id, const std::string& text) {
  return {{"id", id},
          {"shortDescription", {{"text", text}}},
          {"help",
           {{"text",
             "Keep the DLL out of the package; orvelbox check prints the lines for the project file. "
             "Guide: " ORVEL_GUIDE_URL}}}};
}

// A path as the relative or file URI that it is.
std::string UriOf(const std::string& path) {
  static constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
  const std::string scheme = HasPrefix(path, "/") ? "file://" : "";
  return scheme + host::PercentEncoded(path, [](char c) { return kPlain.find(c) != std::string_view::npos; });
}

host::Json LocationOf(const CheckedPackage& package, const CheckedDll& dll) {
  return {{"physicalLocation", {{"artifactLocation", {{"uri", UriOf(FileOf(package, dll))}}}}},
          {"logicalLocations",
           host::Json::array({{{"fullyQualifiedName", package.id + "/" + dll.path}, {"kind", "resource"}}})}};
}

host::Json ResultOf(const CheckedPackage& package, const CheckedDll& dll) {
  const bool removed = dll.verdict == Verdict::kRemoved;
  return {{"ruleId", removed ? kRemovedRule : kReportedRule},
          {"level", package.debugging ? "error"
                    : removed         ? "warning"
                                      : "note"},
          {"message", {{"text", MessageAbout(package, dll)}}},
          {"locations", host::Json::array({LocationOf(package, dll)})}};
}

host::Json NotificationOf(const CheckedPackage& package) {
  return {{"level", "error"},
          {"message", {{"text", package.problem}}},
          {"locations",
           host::Json::array({{{"physicalLocation", {{"artifactLocation", {{"uri", UriOf(package.name)}}}}}}})}};
}

}  // namespace

void WriteJson(const CheckedPackage& package, const TakePart& take) {
  host::Json json = {{"package", package.name}};
  if (!package.problem.empty()) {
    json["error"] = package.problem;
  } else {
    json["id"] = package.id;
    json["version"] = package.version;
    json["root"] = package.root;
    json["dotnet"] = package.dotnet;
    json["debugging"] = package.debugging;
    json["duplicates"] = CountDuplicates(package);
  }
  const std::string text = host::AsciiJson(json);
  take(text.substr(0, text.size() - 1));
  if (package.problem.empty()) {
    const char* separator = ",\"dlls\":[";
    for (const CheckedDll& dll : package.dlls) take(std::exchange(separator, ",") + host::AsciiJson(ToJson(dll)));
    take(package.dlls.empty() ? ",\"dlls\":[]" : "]");
    bool begun = false;
    WriteProjectLines(package, [&](const std::string& line) {
      take((std::exchange(begun, true) ? "," : ",\"project_lines\":[") + host::AsciiJson(line));
    });
    if (begun) take("]");
  }
  take("}");
}

void SarifLog::Add(const CheckedPackage& package) {
  Begin();
  if (!package.problem.empty()) {
    notifications_ += (notifications_.empty() ? "" : ",") + host::AsciiJson(NotificationOf(package));
  }
  for (const CheckedDll& dll : package.dlls) {
    if (!dll.IsDuplicate()) continue;
    say_((std::exchange(first_, false) ? "" : ",") + host::AsciiJson(ResultOf(package, dll)));
  }
}

void SarifLog::End() {
  Begin();
  const char* const successful = notifications_.empty() ? "true" : "false";
  say_(std::string("],\"invocations\":[{\"executionSuccessful\":") + successful + ",\"toolExecutionNotifications\":[" +
       notifications_ + "]}]}]}");
}

void SarifLog::Begin() {
  if (std::exchange(begun_, true)) return;
  const host::Json rules = {Rule(kRemovedRule, "A DLL of the package is provided already; the install removes it."),
                            Rule(kReportedRule,
                                 "A DLL of the package is provided in the read-write area; the install "
                                 "reports it and keeps it.")};
  const host::Json tool = {{"driver", {{"name", "orvelbox check"}, {"rules", rules}}}};
  say_(R"({"$schema":"https://json.schemastore.org/sarif-2.1.0.json","version":"2.1.0","runs":[{"tool":)" +
       host::AsciiJson(tool) + ",\"results\":[");
}

}  // namespace orvelbox
