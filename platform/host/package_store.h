// The package database of a device: packages, applications, metadata and privileges in SQLite. No manifests are read
// here, no files are moved.
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
  std::string root;         // full path on the device, no trailing "/"
  std::string main_app_id;  // empty: the package has no application
  std::vector<Application> applications;
  std::vector<std::string> privileges;  // in the manifest's order, repeats kept
};

// One connection to a package database. Every function throws DeviceError (device_error.h) naming the database file
// when SQLite refuses; a failed change leaves the database as it was.
class PackageStore {
 public:
  enum class Mode { kReadOnly, kReadWrite, kCreate };

  // Opens `file`, which kReadOnly also reads where nothing may be written. Throws when its schema is newer than this
  // program's.
  PackageStore(const std::filesystem::path& file, Mode mode);
  ~PackageStore();

  // Adds the package, or replaces it whole, in one transaction. Throws also when another package has one of its
  // applications.
  void Put(const Package& package);
  // Removes the package with all that belongs to it. False when it is not there.
  bool Remove(const std::string& package_id);

  std::optional<Package> Find(const std::string& package_id) const;
  // Finds the package of an application.
  std::optional<Package> FindByApplication(const std::string& app_id) const;
  // All packages, ordered by id, by byte.
  std::vector<Package> List() const;
  // Every application that has all of the metadata entries, as (package id, application id), ordered by package id,
  // then by the manifest's order. No entry asked for: every application.
  std::vector<std::pair<std::string, std::string>> ApplicationsWithMetadata(
      const std::vector<MetadataEntry>& entries) const;

 private:
  std::vector<Package> Select(const std::string& condition, const std::string& id) const;

  std::filesystem::path file_;
  std::unique_ptr<SQLite::Database> database_;
};

}  // namespace host

#endif
