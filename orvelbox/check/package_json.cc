// The facts of a check as JSON.
#include <nlohmann/json.hpp>

#include "orvelbox/check/formats.h"
#include "platform/host/json.h"

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

}  // namespace

std::string ToJson(const CheckedPackage& package) {
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
    json["dlls"] = host::Json::array();
    for (const CheckedDll& dll : package.dlls) json["dlls"].push_back(ToJson(dll));
    if (const auto lines = ProjectLines(package); !lines.empty()) json["project_lines"] = lines;
  }
  return host::AsciiJson(json);
}

}  // namespace orvelbox
