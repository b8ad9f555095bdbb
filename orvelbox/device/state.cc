// States of a device, taken and compared.
#include "orvelbox/device/state.h"

#include <cstdint>
#include <filesystem>

#include "orvelbox/device/listings.h"
#include "platform/host/files.h"
#include "platform/host/package_store.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// FNV-1a, which is no secret but tells accidents apart.
std::uint64_t Fingerprint(const std::string& content) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char c : content) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  return hash;
}

std::string Describe(const fs::directory_entry& entry) {
  switch (entry.symlink_status().type()) {
    case fs::file_type::regular: {
      const std::string content = host::ReadFile(entry.path());
      return "file of " + std::to_string(content.size()) + " bytes, " + std::to_string(Fingerprint(content));
    }
    case fs::file_type::symlink:
      return "link to " + fs::read_symlink(entry.path()).string();
    case fs::file_type::directory:
      return "directory";
    default:
      return "special file";
  }
}

}  // namespace

DeviceState StateOf(const host::Device& device) {
  DeviceState state;
  const host::PackageStore store(device.Database(), host::PackageStore::Mode::kReadOnly);
  for (const host::Package& package : store.List()) state["package " + package.id] = PackageJson(package);
  try {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(device.Root())) {
      state["/" + entry.path().lexically_relative(device.Root()).string()] = Describe(entry);
    }
  } catch (const fs::filesystem_error& error) {
    host::ThrowFileError(error.path1(), "read", error.code().value());
  }
  return state;
}

std::vector<std::string> Differences(const DeviceState& before, const DeviceState& after) {
  DeviceState all = before;
  all.insert(after.begin(), after.end());
  std::vector<std::string> lines;
  for (const auto& [name, ignored] : all) {
    const auto then = before.find(name);
    const auto now = after.find(name);
    if (then == before.end()) {
      lines.push_back("+ " + name);
    } else if (now == after.end()) {
      lines.push_back("- " + name);
    } else if (then->second != now->second) {
      lines.push_back("~ " + name);
    }
  }
  return lines;
}

}  // namespace orvelbox
