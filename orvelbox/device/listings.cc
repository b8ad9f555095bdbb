// Listings of packages and cache files.
#include "orvelbox/device/listings.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "base/fixed_names.h"
#include "platform/host/json.h"

namespace orvelbox {
namespace {

host::Json Brief(const host::Package& package) {
  return {{"id", package.id}, {"version", package.version}, {"type", package.type}, {"root", package.root}};
}

host::Json Whole(const host::Application& application) {
  host::Json metadata = host::Json::array();
  for (const host::MetadataEntry& entry : application.metadata) {
    metadata.push_back({{"key", entry.key}, {"value", entry.value}});
  }
  return {{"id", application.id},
          {"kind", application.kind},
          {"type", application.type},
          {"exec", application.exec},
          {"metadata", metadata}};
}

host::Json Whole(const CacheText& text) {
  const CacheState state = StateOf(text);
  const char* name = state == CacheState::kSound ? "sound" : state == CacheState::kMissing ? "missing" : "damaged";
  return {{"state", name}, {"entries", EntriesOf(text)}};
}

// Adds the line about a cache file and the lines of its entries.
void AddCache(const std::string& name, const CacheText& text, Lines& lines) {
  const std::vector<std::string> entries = EntriesOf(text);
  const std::string state = StateInWords(StateOf(text));
  const std::string path = kCacheDirectory + name;
  lines.push_back(path + ": " + (text ? Counted(entries.size(), "entry", "entries") : state));
  if (text && !state.empty()) lines.back() += ", " + state;
  for (const std::string& entry : entries) lines.push_back("  " + entry);
}

void AddField(const std::string& name, const std::string& value, Lines& lines) {
  if (!value.empty()) lines.push_back(Padded(name, 11) + value);
}

void AddApplication(const host::Application& application, Lines& lines) {
  lines.push_back("");
  lines.push_back(application.kind + " " + application.id);
  AddField("  type", application.type, lines);
  AddField("  exec", application.exec, lines);
  for (const host::MetadataEntry& entry : application.metadata) {
    AddField("  metadata", entry.key + " = " + entry.value, lines);
  }
}

}  // namespace

Lines DescribePackages(const std::vector<host::Package>& packages) {
  std::size_t id_width = 0;
  std::size_t version_width = 0;
  for (const host::Package& package : packages) {
    id_width = std::max(id_width, package.id.size());
    version_width = std::max(version_width, package.version.size());
  }
  Lines lines;
  for (const host::Package& package : packages) {
    lines.push_back(Padded(package.id, id_width) + "  " + Padded(package.version, version_width) + "  " + package.root);
  }
  return lines;
}

std::string PackagesJson(const std::vector<host::Package>& packages) {
  host::Json json = host::Json::array();
  for (const host::Package& package : packages) json.push_back(Brief(package));
  return host::AsciiJson(json);
}

Lines DescribePackage(const host::Package& package) {
  Lines lines;
  AddField("package", package.id, lines);
  AddField("version", package.version, lines);
  AddField("type", package.type, lines);
  AddField("root", package.root, lines);
  AddField("main app", package.main_app_id, lines);
  for (const std::string& privilege : package.privileges) AddField("privilege", privilege, lines);
  for (const host::Application& application : package.applications) AddApplication(application, lines);
  return lines;
}

std::string PackageJson(const host::Package& package) {
  host::Json json = Brief(package);
  json["main_application"] = package.main_app_id;
  json["privileges"] = package.privileges;
  json["applications"] = host::Json::array();
  for (const host::Application& application : package.applications) json["applications"].push_back(Whole(application));
  return host::AsciiJson(json);
}

Lines DescribeCaches(const CacheText& tpa, const CacheText& coba) {
  Lines lines;
  AddCache(kTpaFile, tpa, lines);
  AddCache(kCobaFile, coba, lines);
  return lines;
}

std::string CachesJson(const CacheText& tpa, const CacheText& coba) {
  return host::AsciiJson({{kTpaFile, Whole(tpa)}, {kCobaFile, Whole(coba)}});
}

}  // namespace orvelbox
