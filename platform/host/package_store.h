// The package database of a device: packages, applications, metadata and privileges in SQLite. It does not read
// manifests or move files.
#ifndef ORVEL_PLATFORM_HOST_PACKAGE_STORE_H_
#define ORVEL_PLATFORM_HOST_PACKAGE_STORE_H_

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace SQLite {
class Database;
}

namespace host {

struct MetadataEntry {
  std::string key;
  std::string value;
};

struct Application {
  std::string id;
  std::string kind;  // "ui-application", "service-application" or "widget-application"
  std::string type;
  std::string exec;  // full path on the device
  std::vector<MetadataEntry> metadata;
};

struct Package {
  std::string id;
  std::string version;
  std::string type;         // "opk" unless the manifest says otherwise
  std::string root;         // full path on the device, without a trailing "/"
  std::string main_app_id;  // empty: the package has no application
  std::vector<Application> applications;
  std::vector<std::string> privileges;  // in the manifest's order, repeats kept
};

// One connection to a package database. Every function throws a DeviceError that names the database file when SQLite
// fails. A failed change leaves the database unchanged.
class PackageStore {
 public:
  enum class Mode { kReadOnly, kReadWrite, kCreate };

  // Opens `file`. kReadOnly also works where nothing may be written. Throws when the schema is newer than this
  // program's.
  PackageStore(const std::filesystem::path& file, Mode mode);
  ~PackageStore();

  // Adds the package, or replaces it completely, in one transaction. Throws also when another package owns one of its
  // applications.
  void Put(const Package& package);
  // Removes the package with all its data. Returns false when it does not exist.
  bool Remove(const std::string& package_id);

  std::optional<Package> Find(const std::string& package_id) const;
  // The package that owns an application.
  std::optional<Package> FindByApplication(const std::string& app_id) const;
  // All packages, sorted by id, by byte.
  std::vector<Package> List() const;
  // The (package id, application id) of every application that has all of the metadata entries, sorted by package id,
  // then in the manifest's order. Without entries: every application.
  std::vector<std::pair<std::string, std::string>> ApplicationsWithMetadata(
      const std::vector<MetadataEntry>& entries) const;

 private:
  std::vector<Package> Select(const std::string& condition, const std::string& id) const;

  std::filesystem::path file_;
  std::unique_ptr<SQLite::Database> database_;
};

}  // namespace host

#endif
