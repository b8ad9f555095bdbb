// JSON of the listings.
#include "orvelbox/device/listings.h"

#include <nlohmann/json.hpp>

namespace orvelbox {
namespace {

using Json = nlohmann::ordered_json;

std::string OneLine(const Json& json) { return json.dump(-1, ' ', true, Json::error_handler_t::replace); }

Json Brief(const host::Package& package) {
  return {{"id", package.id}, {"version", package.version}, {"type", package.type}, {"root", package.root}};
}

Json Whole(const host::Application& application) {
  Json metadata = Json::array();
  for (const host::MetadataEntry& entry : application.metadata) {
    metadata.push_back({{"key", entry.key}, {"value", entry.value}});
  }
  return {{"id", application.id},
          {"kind", application.kind},
          {"type", application.type},
          {"exec", application.exec},
          {"metadata", metadata}};
}

Json Whole(const CacheText& text) {
  const CacheState state = StateOf(text);
  const char* name = state == CacheState::kSound ? "sound" : state == CacheState::kMissing ? "missing" : "damaged";
  return {{"state", name}, {"entries", EntriesOf(text)}};
}

}  // namespace

std::string PackagesJson(const std::vector<host::Package>& packages) {
  Json json = Json::array();
  for (const host::Package& package : packages) json.push_back(Brief(package));
  return OneLine(json);
}

std::string PackageJson(const host::Package& package) {
  Json json = Brief(package);
  json["main_application"] = package.main_app_id;
  json["privileges"] = package.privileges;
  json["applications"] = Json::array();
  for (const host::Application& application : package.applications) json["applications"].push_back(Whole(application));
  return OneLine(json);
}

std::string CachesJson(const CacheText& tpa, const CacheText& coba) {
  return OneLine({{"TPA.txt", Whole(tpa)}, {"CoBA.txt", Whole(coba)}});
}

std::string RecordJson(const host::LogRecord& record) {
  return OneLine({{"time", record.time},
                  {"priority", std::string(1, record.priority)},
                  {"tag", record.tag},
                  {"pid", record.pid},
                  {"text", record.text}});
}

}  // namespace orvelbox
