// The facts of a check as JSON.
#include "orvelbox/check/result.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "orvelbox/check/project_lines.h"

namespace orvelbox {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kKept = "kept";
constexpr const char* kReported = "reported";
constexpr const char* kRemoved = "removed";

Verdict VerdictOf(const std::string& name) {
  if (name == kReported) return Verdict::kReportedOnly;
  return name == kRemoved ? Verdict::kRemoved : Verdict::kKept;
}

void AddCopy(const std::string& prefix, const DllCopy& copy, Json& json) {
  if (copy.size) json[prefix + "size"] = *copy.size;
  if (copy.version) json[prefix + "assembly_version"] = ToString(*copy.version);
}

DllCopy CopyOf(const std::string& prefix, const Json& json) {
  DllCopy copy;
  if (json.contains(prefix + "size")) copy.size = json[prefix + "size"].get<std::uint64_t>();
  if (json.contains(prefix + "assembly_version")) {
    copy.version = ParseAssemblyVersion(json[prefix + "assembly_version"].get<std::string>());
  }
  return copy;
}

Json ToJson(const CheckedDll& dll) {
  Json json = {{"path", dll.path}, {"verdict", ToString(dll.verdict)}};
  if (!dll.reason.empty()) json["reason"] = dll.reason;
  if (!dll.origin.empty()) json["origin"] = dll.origin;
  AddCopy("", dll.own, json);
  AddCopy("origin_", dll.provided, json);
  if (dll.IsNewer()) json["newer_than_origin"] = true;
  return json;
}

CheckedDll DllOf(const Json& json) {
  CheckedDll dll;
  dll.path = json.at("path").get<std::string>();
  dll.verdict = VerdictOf(json.at("verdict").get<std::string>());
  dll.reason = json.value("reason", "");
  dll.origin = json.value("origin", "");
  dll.own = CopyOf("", json);
  dll.provided = CopyOf("origin_", json);
  return dll;
}

}  // namespace

std::string ToString(Verdict verdict) {
  switch (verdict) {
    case Verdict::kReportedOnly:
      return kReported;
    case Verdict::kRemoved:
      return kRemoved;
    default:
      return kKept;
  }
}

std::size_t CountDuplicates(const CheckedPackage& package) {
  return static_cast<std::size_t>(
      std::count_if(package.dlls.begin(), package.dlls.end(), [](const CheckedDll& dll) { return dll.IsDuplicate(); }));
}

std::string ToJson(const CheckedPackage& package) {
  Json json = {{"package", package.name}};
  if (!package.problem.empty()) {
    json["error"] = package.problem;
  } else {
    json["id"] = package.id;
    json["version"] = package.version;
    json["root"] = package.root;
    json["dotnet"] = package.dotnet;
    json["debugging"] = package.debugging;
    json["duplicates"] = CountDuplicates(package);
    json["dlls"] = Json::array();
    for (const CheckedDll& dll : package.dlls) json["dlls"].push_back(ToJson(dll));
    if (const auto lines = ProjectLines(package); !lines.empty()) json["project_lines"] = lines;
  }
  return json.dump(-1, ' ', true, Json::error_handler_t::replace);
}

CheckedPackage CheckedPackageFromJson(const std::string& line) {
  const Json json = Json::parse(line);
  CheckedPackage package;
  package.name = json.at("package").get<std::string>();
  package.problem = json.value("error", "");
  if (!package.problem.empty()) return package;
  package.id = json.at("id").get<std::string>();
  package.version = json.at("version").get<std::string>();
  package.root = json.at("root").get<std::string>();
  package.dotnet = json.at("dotnet").get<bool>();
  package.debugging = json.at("debugging").get<bool>();
  for (const Json& dll : json.at("dlls")) package.dlls.push_back(DllOf(dll));
  return package;
}

}  // namespace orvelbox
