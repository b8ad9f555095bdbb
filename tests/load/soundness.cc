// Judges a device.
#include "tests/load/soundness.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <set>

#include "tests/support/files.h"

namespace load {
namespace {

namespace fs = std::filesystem;
using Faults = std::vector<std::string>;

// The first column of the rows.
std::vector<std::string> Rows(const host::Device& device, const std::string& sql) {
  const SQLite::Database database(device.Database().string(), SQLite::OPEN_READONLY);
  SQLite::Statement row(database, sql);
  std::vector<std::string> rows;
  while (row.executeStep()) rows.push_back(row.getColumn(0).getString());
  return rows;
}

void ExpectRows(const host::Device& device, const std::string& sql, const std::vector<std::string>& expected,
                Faults& faults) {
  const std::vector<std::string> found = Rows(device, sql);
  if (found == expected) return;
  faults.push_back("the database: " + sql + ":");
  for (const std::string& row : found) faults.back() += " " + row;
}

void JudgeDatabase(const host::Device& device, const KnownPackages& known, Faults& faults) {
  ExpectRows(device, "PRAGMA integrity_check", {"ok"}, faults);
  ExpectRows(device, "PRAGMA foreign_key_check", {}, faults);
  ExpectRows(device, "SELECT id FROM packages WHERE main_app_id != id || '.main' OR root != '" + RootOf("") + "' || id",
             {}, faults);
  std::vector<std::string> applications;
  std::vector<std::string> owners_of_metadata;
  for (const auto& [id, version] : InstalledVersions(device)) {
    applications.push_back(id + ".main");
    if (!known.at(id).at(version).coba_entries.empty()) owners_of_metadata.push_back(id + ".main");
  }
  ExpectRows(device, "SELECT id FROM applications ORDER BY id", applications, faults);
  ExpectRows(device, "SELECT app_id FROM metadata ORDER BY app_id", owners_of_metadata, faults);
  ExpectRows(device, "SELECT package_id || '.main' FROM privileges ORDER BY package_id", applications, faults);
}

Files TreeAt(const fs::path& directory) {
  Files files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
    if (entry.is_directory()) continue;
    files[entry.path().lexically_relative(directory)] = support::ReadFile(entry.path());
  }
  return files;
}

void JudgeTree(const fs::path& directory, const KnownVersion& known, Strictness strictness, Faults& faults) {
  Files found = TreeAt(directory);
  Files expected = known.installed;
  if (strictness == Strictness::kPluginHindered) {
    for (const char* path : {kDuplicate, kInformation}) found.erase(path), expected.erase(path);
  }
  std::set<std::string> paths;
  for (const Files* files : {&found, &expected}) {
    for (const auto& [path, content] : *files) paths.insert(path);
  }
  for (const std::string& path : paths) {
    const bool same = found.count(path) == expected.count(path) && found[path] == expected[path];
    if (!same) faults.push_back(known.id + " " + known.version + ": " + path + " is not as in this version");
  }
}

// Every package has a tree, every tree has a package, and nothing else is there.
void JudgeTrees(const host::Device& device, const KnownPackages& known, Strictness strictness, Faults& faults) {
  const fs::path root = device.OnDesk(RootOf(""));
  const std::map<std::string, std::string> installed = InstalledVersions(device);
  for (const std::string& name : support::NamesIn(root)) {
    if (installed.count(name) == 0) faults.push_back(RootOf(name) + ": no package's tree");
  }
  for (const auto& [id, version] : installed) {
    if (support::IsThere(root / id)) {
      JudgeTree(root / id, known.at(id).at(version), strictness, faults);
    } else {
      faults.push_back(id + ": has no tree");
    }
  }
}

// The entries of a cache file, sorted; one that tells of the fault when there are no markers.
std::vector<std::string> EntriesIn(const fs::path& file) {
  std::string text = support::IsThere(file) ? support::ReadFile(file) : "(missing)";
  const std::string start = "[START]";
  const std::string end = "[END]";
  const bool whole = text.size() >= start.size() + end.size() && text.rfind(start, 0) == 0 &&
                     text.compare(text.size() - end.size(), end.size(), end) == 0;
  if (!whole) return {"no markers: " + text};
  text = text.substr(start.size(), text.size() - start.size() - end.size());
  std::vector<std::string> entries;
  while (!text.empty()) {
    const std::size_t next = std::min(text.find(':', 1), text.size());
    entries.push_back(text.front() == ':' ? text.substr(1, next - 1) : "no separator: " + text);
    text.erase(0, next);
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

void JudgeCache(const host::Device& device, const std::string& name, std::vector<std::string> expected,
                Faults& faults) {
  std::sort(expected.begin(), expected.end());
  const std::vector<std::string> found = EntriesIn(device.OnDesk(kCacheDirectory) / name);
  if (found == expected) return;
  faults.push_back(name + ": does not hold what the packages say, but:");
  for (const std::string& entry : found) faults.back() += " " + entry;
}

void JudgeCaches(const host::Device& device, const KnownPackages& known, Faults& faults) {
  std::vector<std::string> tpa;
  std::vector<std::string> coba;
  for (const auto& [id, version] : InstalledVersions(device)) {
    const KnownVersion& package = known.at(id).at(version);
    tpa.insert(tpa.end(), package.tpa_entries.begin(), package.tpa_entries.end());
    coba.insert(coba.end(), package.coba_entries.begin(), package.coba_entries.end());
  }
  JudgeCache(device, kTpaFile, tpa, faults);
  JudgeCache(device, kCobaFile, coba, faults);
}

// No file is left that belongs to no sound device.
void JudgeNames(const fs::path& directory, const std::set<std::string>& allowed, Faults& faults) {
  for (const std::string& name : support::NamesIn(directory)) {
    if (allowed.count(name) == 0) faults.push_back((directory / name).string() + ": was left");
  }
}

}  // namespace

std::map<std::string, std::string> InstalledVersions(const host::Device& device) {
  std::map<std::string, std::string> versions;
  for (const std::string& row : Rows(device, "SELECT id || ' ' || version FROM packages ORDER BY id")) {
    versions[row.substr(0, row.find(' '))] = row.substr(row.find(' ') + 1);
  }
  return versions;
}

Faults FaultsOf(const host::Device& device, const KnownPackages& known, Strictness strictness) {
  Faults faults;
  JudgeDatabase(device, known, faults);
  JudgeTrees(device, known, strictness, faults);
  if (strictness == Strictness::kComplete) JudgeCaches(device, known, faults);
  JudgeNames(device.directory,
             {"device.json", "loader.json", "lock", "log", "packages.db", "packages.db-shm", "packages.db-wal", "root"},
             faults);
  // A killed plug-in leaves its temporary files, which its next run overwrites.
  JudgeNames(device.OnDesk(kCacheDirectory), {kTpaFile, kCobaFile, "temp_TPA.txt", "temp_CoBA.txt"}, faults);
  return faults;
}

}  // namespace load
