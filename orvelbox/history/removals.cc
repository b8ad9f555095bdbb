// Information files first, then what the log adds.
#include "orvelbox/history/removals.h"

#include <map>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "orvelbox/desk/tree.h"
#include "platform/host/files.h"
#include "platform/host/paths.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

constexpr std::uintmax_t kLongestInformation = 65536;

// What the plug-in's walk left in the package's tree.
void AddInformationFiles(const host::Device& device, const host::Package& package,
                         std::map<std::string, Removal>& removals) {
  const fs::path root = device.OnDesk(package.root);
  std::error_code error;
  const auto readable = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator entry(root, readable, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().lexically_relative(root).string();
    if (!HasSuffix(name, kInformationFileSuffix) || !fs::is_regular_file(entry->symlink_status())) continue;
    if (entry->file_size(error) > kLongestInformation || error) continue;
    const std::string dll = package.root + "/" + name.substr(0, name.size() - kInformationFileSuffix.size());
    if (const auto information = ParseInformationFile(dll, host::ReadFile(entry->path()))) {
      removals[dll] = {dll, information->origin, "", true, true, false};
    }
  }
}

// The log knows when, and what was only reported. A later report of another kind leaves the information file's word.
void AddLog(const host::Device& device, const host::Package& package, std::map<std::string, Removal>& removals) {
  for (const Duplicate& duplicate : InterpretLog(ParseLog(host::ReadFile(device.Log()))).duplicates) {
    if (!host::IsBelow(duplicate.duplicated, package.root)) continue;
    Removal& removal = removals[duplicate.duplicated];
    if (removal.information_file && removal.origin != duplicate.origin) continue;
    removal.dll = duplicate.duplicated;
    removal.origin = duplicate.origin;
    removal.time = duplicate.time;
    removal.removed = !duplicate.origin_read_write;
  }
}

}  // namespace

std::optional<InformationFile> ParseInformationFile(const std::string& dll, std::string_view text) {
  const std::string begin = dll + " was deleted because ";
  const std::string end = " exists\nRemove " + dll + " from OPK\n";
  if (text.size() <= begin.size() + end.size()) return std::nullopt;
  if (!HasPrefix(text, begin) || !HasSuffix(text, end)) return std::nullopt;
  return InformationFile{dll, std::string(text.substr(begin.size(), text.size() - begin.size() - end.size()))};
}

std::vector<Removal> RemovalsOf(const host::Device& device, const host::Package& package) {
  std::map<std::string, Removal> removals;
  AddInformationFiles(device, package, removals);
  AddLog(device, package, removals);
  std::vector<Removal> all;
  for (auto& [dll, removal] : removals) {
    removal.origin_there = IsThere(device.OnDesk(removal.origin));
    all.push_back(std::move(removal));
  }
  return all;
}

}  // namespace orvelbox
