// The facts of a check as JSON.
#include "orvelbox/check/package_json.h"

#include <nlohmann/json.hpp>

#include "orvelbox/check/project_lines.h"
#include "orvelbox/desk/json.h"

namespace orvelbox {
namespace {

Verdict VerdictOf(const std::string& name) {
  for (const Verdict verdict : {Verdict::kReportedOnly, Verdict::kRemoved}) {
    if (name == ToString(verdict)) return verdict;
  }
  return Verdict::kKept;
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
  return OneLine(json);
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
