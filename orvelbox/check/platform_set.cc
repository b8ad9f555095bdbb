// Platform sets from their three sources.
#include "orvelbox/check/platform_set.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "base/fixed_names.h"
#include "morvath/metadata_utils.h"
#include "orvelbox/desk/tree.h"
#include "platform/host/files.h"
#include "platform/host/paths.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

bool IsCobaEntry(const host::MetadataEntry& entry) {
  return entry.key == MetadataKey::coBA && entry.value == metadataValueTrue;
}

// The paths of a list. A directory that `find` names beside what it holds does not count.
std::set<std::string> ReadList(const fs::path& list) {
  std::istringstream lines(host::ReadFile(list));
  std::set<std::string> paths;
  std::set<std::string> directories;
  std::string line;
  for (std::size_t number = 1; std::getline(lines, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line.front() == '#') continue;
    const fs::path path = line;
    if (line.front() != '/' || path.lexically_normal() != path || line.find('\0') != std::string::npos) {
      throw host::DeviceError(list.string() + ": line " + std::to_string(number) + " (\"" + line +
                              "\") is no plain absolute path; write one path a line, as find prints them");
    }
    paths.insert(line);
    for (fs::path above = path.parent_path(); directories.insert(above).second;) above = above.parent_path();
  }
  for (const std::string& directory : directories) paths.erase(directory);
  return paths;
}

// Makes an empty file with the directories above it.
void Touch(const fs::path& file) {
  host::MakeDirectory(file.parent_path());
  host::CreateFile(file, "");
}

// Lays a list out in `scratch`.
PlatformSet SetOfList(const fs::path& list, const fs::path& scratch) {
  PlatformSet set;
  set.assemblies = scratch / "platform";
  set.only_names = true;
  for (const std::string& path : ReadList(list)) {
    const std::size_t shared = path.rfind(kSharedResourceSuffix);
    if (host::IsBelow(path, host::kPlatformAssemblies)) {
      Touch(set.assemblies / host::From(host::kPlatformAssemblies, path));
    } else if (shared != std::string::npos && shared > 0) {
      const std::string root = path.substr(0, shared);
      const fs::path desk = scratch / "coba" / fs::path(root).relative_path();
      Touch(desk / path.substr(shared + 1));
      const std::string id = fs::path(root).filename();
      set.coba[id] = {id, desk, root, true};
    }
  }
  if (IsThere(set.assemblies)) return set;
  throw host::DeviceError(list.string() + ": names no assemblies below " + host::kPlatformAssemblies +
                          "; list them on the device with: find " + host::kPlatformAssemblies);
}

}  // namespace

PlatformSet SetOfDevice(const host::Device& device) {
  PlatformSet set;
  set.assemblies = device.OnDesk(host::kPlatformAssemblies);
  set.read_write_root = host::ReadConfig(device).read_write_root;
  const host::PackageStore store(device.Database(), host::PackageStore::Mode::kReadOnly);
  for (const host::Package& package : store.List()) {
    set.roots[package.id] = package.root;
    if (IsCobaPackage(package)) set.coba[package.id] = {package.id, device.OnDesk(package.root), package.root};
  }
  return set;
}

PlatformSet SetOfPlatform(const fs::path& platform, const fs::path& scratch) {
  std::error_code ignored;
  if (fs::is_regular_file(platform, ignored)) return SetOfList(platform, scratch);
  RequirePlatform(platform);
  PlatformSet set;
  set.assemblies = fs::absolute(platform);
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
  const bool found =
      std::any_of(std::begin(host::kPlatformAssemblyDirectories), std::end(host::kPlatformAssemblyDirectories),
                  [&](const char* name) { return fs::is_directory(platform / name); });
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
