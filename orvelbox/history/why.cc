// Information files first, then what the log adds; then the answer to a question about a DLL.
#include "orvelbox/history/why.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/device/installed_trees.h"
#include "orvelbox/history/log_facts.h"
#include "platform/host/files.h"
#include "platform/host/json.h"
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
    if (const auto origin = OriginIn(host::ReadFile(entry->path()), dll)) {
      removals[dll] = {dll, *origin, "", true, false, true, false};
    }
  }
}

// The log knows when, and what was only reported; where it does not know what became of a DLL, the device does. A later
// report of another kind leaves the information file's word.
void AddLog(const host::Device& device, const host::Package& package, const LogSummary& log,
            std::map<std::string, Removal>& removals) {
  for (const Duplicate& duplicate : log.duplicates) {
    if (!host::IsBelow(duplicate.duplicated, package.root)) continue;
    Removal& removal = removals[duplicate.duplicated];
    if (removal.information_file && removal.origin != duplicate.origin) continue;
    removal.dll = duplicate.duplicated;
    removal.origin = duplicate.origin;
    removal.time = duplicate.time;
    removal.stays = duplicate.fate == What::kStays;
    removal.removed =
        duplicate.fate == What::kRemoved || (!removal.stays && !IsThere(device.OnDesk(duplicate.duplicated)));
  }
}

// A path of the desk inside of the device, as the device's; any other absolute path as it is.
std::string OnDevice(const host::Device& device, const std::string& text) {
  std::string found = fs::absolute(text).lexically_normal();
  if (host::IsBelow(found, device.Root())) found = "/" + host::From(device.Root(), found);
  while (found.size() > 1 && found.back() == '/') found.pop_back();
  if (HasSuffix(found, kInformationFileSuffix)) found.resize(found.size() - kInformationFileSuffix.size());
  return found;
}

const char* FateOf(const Removal& removal) { return removal.removed ? "removed" : "reported"; }

std::string NoteOn(const Removal& removal) {
  if (removal.stays) return "kept, the copy that decided lies in the read-write area";
  if (!removal.removed) return "there, the log does not tell that it was removed";
  if (!removal.information_file) return "in an install before this one: there is no information file any more";
  if (!removal.origin_there) return "the copy that decided is gone since; an install now would keep the DLL";
  return "";
}

// The DLLs that are asked for and there, of which the removals know nothing.
std::vector<CheckedDll> Untold(const WhyQuestion& question, const std::vector<Removal>& removals,
                               const CheckedPackage& today) {
  std::vector<CheckedDll> untold;
  if (question.path.empty()) return untold;
  for (const CheckedDll& dll : today.dlls) {
    const std::string path = today.root + "/" + dll.path;
    const bool told = std::any_of(removals.begin(), removals.end(),
                                  [&](const Removal& removal) { return removal.dll == path && !removal.removed; });
    if (host::IsAtOrBelow(path, question.path) && !told) untold.push_back(dll);
  }
  return untold;
}

std::string ReasonToday(const CheckedDll& dll, const CheckedPackage& today) {
  if (!today.dotnet) return kLeftAlone;
  if (dll.verdict == Verdict::kRemoved) return "an install now would remove it";
  if (dll.verdict == Verdict::kReportedOnly) return "an install now would report it, and keep it (read-write area)";
  return dll.reason.empty() ? "no catalogue holds its name" : std::string(dll.reason);
}

std::vector<TextTable::Row> RowsOf(const WhyQuestion& question, const std::vector<Removal>& removals,
                                   const CheckedPackage& today) {
  const std::string& root = question.package.root;
  std::vector<TextTable::Row> rows;
  rows.reserve(removals.size());
  for (const Removal& removal : removals) {
    rows.push_back({FateOf(removal), host::From(root, removal.dll), removal.time, removal.origin, NoteOn(removal)});
  }
  for (const CheckedDll& dll : Untold(question, removals, today)) {
    rows.push_back({"there", dll.path, "", dll.origin, ReasonToday(dll, today)});
  }
  return rows;
}

std::string NothingKnown(const WhyQuestion& question, const Removals& removals) {
  if (!question.path.empty()) {
    return "nothing is known of " + host::From(question.package.root, question.path) +
           ": no information file, no line in the log, and no DLL there that it could have been";
  }
  if (removals.unread_from > 0) return "nothing is known to be removed from the package, or reported";
  return "nothing was removed from the package, and nothing reported";
}

}  // namespace

std::optional<std::string> OriginIn(std::string_view text, const std::string& dll) {
  const std::string begin = dll + " was deleted because ";
  const std::string end = " exists\nRemove " + dll + " from OPK\n";
  if (text.size() <= begin.size() + end.size()) return std::nullopt;
  if (!HasPrefix(text, begin) || !HasSuffix(text, end)) return std::nullopt;
  return std::string(text.substr(begin.size(), text.size() - begin.size() - end.size()));
}

Removals RemovalsFor(const host::Device& device, const WhyQuestion& question) {
  std::map<std::string, Removal> removals;
  AddInformationFiles(device, question.package, removals);
  const LogSummary log = Summarize(ReadLogFacts(device.Log()));
  AddLog(device, question.package, log, removals);
  std::vector<Removal> all;
  for (auto& [dll, removal] : removals) {
    if (!question.path.empty() && !host::IsAtOrBelow(dll, question.path)) continue;
    removal.origin_there = IsThere(device.OnDesk(removal.origin));
    all.push_back(std::move(removal));
  }
  return {all, log.unread_from};
}

WhyQuestion ReadQuestion(const host::Device& device, const host::PackageStore& store, const std::string& text) {
  if (text.find('/') == std::string::npos) {
    if (auto package = store.Find(text)) return {*std::move(package), ""};
    if (!fs::exists(text)) return {FindInstalled(store, text), ""};
  }
  const std::string path = OnDevice(device, text);
  for (host::Package& package : store.List()) {
    if (path == package.root) return {std::move(package), ""};
    if (host::IsAtOrBelow(path, package.root)) return {std::move(package), path};
  }
  throw host::DeviceError(text + ": belongs to no installed package; see what is with: orvelbox list");
}

Lines DescribeWhy(const WhyQuestion& question, const Removals& removals, const CheckedPackage& today) {
  Lines lines = {WithVersion(question.package.id, question.package.version) + " (" + question.package.root + ")"};
  const std::vector<TextTable::Row> rows = RowsOf(question, removals.all, today);
  if (rows.empty()) {
    lines.push_back("    " + NothingKnown(question, removals));
  } else {
    TextTable table({"WHAT", "DLL", "WHEN", "BECAUSE OF", "NOTE"});
    for (const auto& row : rows) table.Measure(row);
    lines.push_back("    " + table.Headings());
    for (const auto& row : rows) lines.push_back("    " + table.Line(row));
  }
  if (removals.unread_from > 0) {
    lines.push_back("    the log was read up to line " + std::to_string(removals.unread_from - 1) +
                    ", it holds more than can be told at once");
  }
  return lines;
}

std::string WhyJson(const WhyQuestion& question, const Removals& removals, const CheckedPackage& today) {
  const host::Package& package = question.package;
  host::Json json = {
      {"id", package.id}, {"version", package.version}, {"root", package.root}, {"dlls", host::Json::array()}};
  if (removals.unread_from > 0) json["unread_from"] = removals.unread_from;
  for (const Removal& removal : removals.all) {
    json["dlls"].push_back({{"path", host::From(package.root, removal.dll)},
                            {"fate", FateOf(removal)},
                            {"time", removal.time.empty() ? host::Json() : host::Json(removal.time)},
                            {"origin", removal.origin},
                            {"origin_there", removal.origin_there},
                            {"information_file", removal.information_file}});
  }
  for (const CheckedDll& dll : Untold(question, removals.all, today)) {
    json["dlls"].push_back({{"path", dll.path},
                            {"fate", "there"},
                            {"origin", dll.origin.empty() ? host::Json() : host::Json(dll.origin)},
                            {"reason", ReasonToday(dll, today)}});
  }
  return host::AsciiJson(json);
}

}  // namespace orvelbox
