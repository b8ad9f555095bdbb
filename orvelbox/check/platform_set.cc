// Platform sets from their three sources.
#include "orvelbox/check/platform_set.h"

#include <dirent.h>

#include <algorithm>
#include <climits>
#include <set>
#include <sstream>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "morvath/metadata_utils.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/tree.h"
#include "platform/host/files.h"
#include "platform/host/paths.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

bool IsCobaEntry(const host::MetadataEntry& entry) {
  return entry.key == MetadataKey::coBA && entry.value == metadataValueTrue;
}

// Absolute, with one "/" between names of which none is "." or "..".
bool IsPlain(const std::string& path) {
  const bool doubtful = path.find("//") != std::string::npos || path.find("/.") != std::string::npos;
  return path.front() == '/' && path.size() < PATH_MAX && path.find('\0') == std::string::npos &&
         (!doubtful || fs::path(path).lexically_normal().native() == path);
}

std::string Above(const std::string& path) { return path.substr(0, path.rfind('/')); }

// The paths of a list. A directory that `find` names beside what it holds does not count.
std::set<std::string> ReadList(const fs::path& list) {
  constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
  std::string text = host::ReadFile(list);
  if (HasPrefix(text, kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  std::istringstream lines(text);
  std::set<std::string> paths;
  std::set<std::string> directories;
  std::string line;
  for (std::size_t number = 1; std::getline(lines, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line.front() == '#') continue;
    if (!IsPlain(line)) {
      throw host::DeviceError(list.string() + ": line " + std::to_string(number) + " (\"" + Printable(line) +
                              "\") is no plain absolute path; write one path a line, as find prints them");
    }
    paths.insert(line);
    for (std::string above = Above(line); directories.insert(above).second;) above = Above(above);
  }
  for (const std::string& directory : directories) paths.erase(directory);
  return paths;
}

[[noreturn]] void ThrowTwice(const fs::path& list, const PlacedPackage& package, const std::string& other_root) {
  throw host::DeviceError(list.string() + ": names the package " + package.id + " twice, in " + package.root +
                          " and in " + other_root + "; leave one out");
}

PlatformSet SetOfList(const fs::path& list) {
  Listing platform;
  std::map<std::string, Listing> components;  // by their roots
  bool found = false;
  for (const std::string& path : ReadList(list)) {
    const std::size_t shared = path.find(kSharedResourceSuffix);
    if (host::IsBelow(path, host::kPlatformAssemblies)) {
      platform.Add(host::From(host::kPlatformAssemblies, path), DT_REG);
      found = true;
    } else if (shared != std::string::npos && shared > 0) {
      components[path.substr(0, shared)].Add(path.substr(shared + 1), DT_REG);
    }
  }
  if (!found) {
    throw host::DeviceError(list.string() + ": names no assemblies below " + host::kPlatformAssemblies +
                            "; list them on the device with: find " + host::kPlatformAssemblies);
  }
  PlatformSet set;
  set.assemblies = std::make_shared<PackageFiles>(std::move(platform));
  for (auto& [root, listing] : components) {
    const std::string id = fs::path(root).filename();
    const auto [place, added] =
        set.coba.try_emplace(id, PlacedPackage{id, root, std::make_shared<PackageFiles>(std::move(listing))});
    if (!added) ThrowTwice(list, place->second, root);
  }
  return set;
}

}  // namespace

PlatformSet SetOfDevice(const host::Device& device) {
  PlatformSet set;
  set.assemblies = FilesIn(device.OnDesk(host::kPlatformAssemblies));
  set.read_write_root = host::ReadConfig(device).read_write_root;
  const host::PackageStore store(device.Database(), host::PackageStore::Mode::kReadOnly);
  for (const host::Package& package : store.List()) {
    set.roots[package.id] = package.root;
    if (!IsCobaPackage(package)) continue;
    set.coba[package.id] = {package.id, package.root, FilesIn(device.OnDesk(package.root))};
  }
  return set;
}

PlatformSet SetOfPlatform(const fs::path& platform) {
  std::error_code ignored;
  if (!fs::exists(platform, ignored)) {
    throw host::DeviceError(platform.string() +
                            ": no such file or directory; name a list file or a directory of platform assemblies");
  }
  if (!fs::is_directory(platform, ignored)) return SetOfList(platform);
  RequirePlatform(platform);
  PlatformSet set;
  set.assemblies = FilesIn(platform);
  return set;
}

bool IsCobaPackage(const host::Package& package) {
  return std::any_of(package.applications.begin(), package.applications.end(),
                     [](const host::Application& application) {
                       return std::any_of(application.metadata.begin(), application.metadata.end(), IsCobaEntry);
                     });
}

std::string RootOnDevice(const PlatformSet& set, const std::string& id) {
  const auto installed = set.roots.find(id);
  return installed == set.roots.end() ? set.read_write_root + "/" + id : installed->second;
}

void RequirePlatform(const fs::path& platform) {
  const bool found = std::any_of(std::begin(host::kPlatformAssemblyDirectories),
                                 std::end(host::kPlatformAssemblyDirectories), [&](const char* name) {
                                   std::error_code ignored;
                                   return fs::is_directory(platform / name, ignored);
                                 });
  if (found) return;
  throw host::DeviceError(platform.string() +
                          ": no platform assemblies; name a directory that holds netcoreapp/, framework/, d.pc/ or " +
                          "tvappapi/");
}

void CopyPlatform(const fs::path& platform, const host::Device& device) {
  for (const char* name : host::kPlatformAssemblyDirectories) {
    if (IsThere(platform / name)) CopyTree(platform / name, device.OnDesk(host::kPlatformAssemblies) / name);
  }
}

}  // namespace orvelbox
