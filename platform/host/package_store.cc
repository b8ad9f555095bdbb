// The package database: its changes and its questions. The tables are package_store_schema.cc's.
#include "platform/host/package_store.h"

#include "platform/host/device_error.h"
#include "platform/host/package_store_schema.h"

namespace host {
namespace {

using Transaction = SqliteTransaction;

void RefuseForeignApplications(const SqliteDatabase& database, const Package& package) {
  SqliteStatement owner(database, "SELECT package_id FROM applications WHERE id = ?1");
  for (const auto& application : package.applications) {
    owner.Reset();
    if (owner.Bind(1, application.id).Step()) {
      throw DeviceError(database.file().string() + ": application " + application.id + " belongs to package " +
                        owner.Text(0) + " already; uninstall that one, or give the application another id");
    }
  }
}

bool Delete(const SqliteDatabase& database, const std::string& package_id) {
  SqliteStatement statement(database, "DELETE FROM packages WHERE id = ?1 RETURNING id");
  return statement.Bind(1, package_id).Step();
}

void InsertMetadata(const SqliteDatabase& database, const Application& application) {
  SqliteStatement statement(database, "INSERT INTO metadata (app_id, position, key, value) VALUES (?1, ?2, ?3, ?4)");
  int64_t position = 0;
  for (const auto& entry : application.metadata) {
    statement.Reset();
    statement.Bind(1, application.id).Bind(2, position++).Bind(3, entry.key).Bind(4, entry.value).Step();
  }
}

void InsertApplications(const SqliteDatabase& database, const Package& package) {
  SqliteStatement statement(database,
                            "INSERT INTO applications (id, package_id, position, kind, type, exec)"
                            " VALUES (?1, ?2, ?3, ?4, ?5, ?6)");
  int64_t position = 0;
  for (const auto& application : package.applications) {
    statement.Reset();
    statement.Bind(1, application.id).Bind(2, package.id).Bind(3, position++);
    statement.Bind(4, application.kind).Bind(5, application.type).Bind(6, application.exec).Step();
    InsertMetadata(database, application);
  }
}

void InsertPrivileges(const SqliteDatabase& database, const Package& package) {
  SqliteStatement statement(database, "INSERT INTO privileges (package_id, position, name) VALUES (?1, ?2, ?3)");
  int64_t position = 0;
  for (const auto& privilege : package.privileges) {
    statement.Reset();
    statement.Bind(1, package.id).Bind(2, position++).Bind(3, privilege).Step();
  }
}

void InsertPackage(const SqliteDatabase& database, const Package& package) {
  SqliteStatement statement(database,
                            "INSERT INTO packages (id, version, type, root, main_app_id) VALUES (?1, ?2, ?3, ?4, ?5)");
  statement.Bind(1, package.id).Bind(2, package.version).Bind(3, package.type);
  statement.Bind(4, package.root).Bind(5, package.main_app_id).Step();
  InsertApplications(database, package);
  InsertPrivileges(database, package);
}

std::vector<MetadataEntry> ReadMetadata(const SqliteDatabase& database, const std::string& app_id) {
  SqliteStatement row(database, "SELECT key, value FROM metadata WHERE app_id = ?1 ORDER BY position");
  row.Bind(1, app_id);
  std::vector<MetadataEntry> metadata;
  while (row.Step()) metadata.push_back({row.Text(0), row.Text(1)});
  return metadata;
}

std::vector<Application> ReadApplications(const SqliteDatabase& database, const std::string& package_id) {
  SqliteStatement row(database,
                      "SELECT id, kind, type, exec FROM applications WHERE package_id = ?1 ORDER BY position");
  row.Bind(1, package_id);
  std::vector<Application> applications;
  while (row.Step()) {
    const std::string id = row.Text(0);
    applications.push_back({id, row.Text(1), row.Text(2), row.Text(3), ReadMetadata(database, id)});
  }
  return applications;
}

std::vector<std::string> ReadPrivileges(const SqliteDatabase& database, const std::string& package_id) {
  SqliteStatement row(database, "SELECT name FROM privileges WHERE package_id = ?1 ORDER BY position");
  row.Bind(1, package_id);
  std::vector<std::string> privileges;
  while (row.Step()) privileges.push_back(row.Text(0));
  return privileges;
}

// The package of a row (id, version, type, root, main_app_id).
Package ReadPackage(const SqliteDatabase& database, const SqliteStatement& row) {
  Package package{row.Text(0), row.Text(1), row.Text(2), row.Text(3), row.Text(4), {}, {}};
  package.applications = ReadApplications(database, package.id);
  package.privileges = ReadPrivileges(database, package.id);
  return package;
}

constexpr std::string_view kPackageRow = "SELECT id, version, type, root, main_app_id FROM packages";

std::optional<Package> ReadOnePackage(const SqliteDatabase& database, std::string_view condition,
                                      const std::string& id) {
  const Transaction one_state(database, Transaction::Kind::kRead);
  SqliteStatement row(database, std::string(kPackageRow).append(condition));
  if (!row.Bind(1, id).Step()) return std::nullopt;
  return ReadPackage(database, row);
}

std::string FilterQuery(size_t entries) {
  std::string sql = "SELECT package_id, id FROM applications WHERE TRUE";
  for (size_t i = 0; i < entries; ++i) {
    sql += " AND EXISTS (SELECT 1 FROM metadata WHERE app_id = applications.id AND key = ? AND value = ?)";
  }
  return sql + " ORDER BY package_id, position";
}

}  // namespace

PackageStore::PackageStore(const std::filesystem::path& file, Mode mode) : database_(file, mode) {
  if (mode == Mode::kCreate) CreateSchema(database_);
  CheckSchema(database_);
}

void PackageStore::Put(const Package& package) {
  Transaction change(database_, Transaction::Kind::kWrite);
  Delete(database_, package.id);
  RefuseForeignApplications(database_, package);
  InsertPackage(database_, package);
  change.Commit();
}

bool PackageStore::Remove(const std::string& package_id) {
  Transaction change(database_, Transaction::Kind::kWrite);
  const bool found = Delete(database_, package_id);
  change.Commit();
  return found;
}

std::optional<Package> PackageStore::Find(const std::string& package_id) const {
  return ReadOnePackage(database_, " WHERE id = ?1", package_id);
}

std::optional<Package> PackageStore::FindByApplication(const std::string& app_id) const {
  return ReadOnePackage(database_, " WHERE id = (SELECT package_id FROM applications WHERE id = ?1)", app_id);
}

std::vector<Package> PackageStore::List() const {
  const Transaction one_state(database_, Transaction::Kind::kRead);
  SqliteStatement row(database_, std::string(kPackageRow).append(" ORDER BY id"));
  std::vector<Package> packages;
  while (row.Step()) packages.push_back(ReadPackage(database_, row));
  return packages;
}

std::vector<std::pair<std::string, std::string>> PackageStore::ApplicationsWithMetadata(
    const std::vector<MetadataEntry>& entries) const {
  SqliteStatement row(database_, FilterQuery(entries.size()));
  int parameter = 0;
  for (const auto& entry : entries) {
    row.Bind(++parameter, entry.key);
    row.Bind(++parameter, entry.value);
  }
  std::vector<std::pair<std::string, std::string>> applications;
  while (row.Step()) applications.emplace_back(row.Text(0), row.Text(1));
  return applications;
}

}  // namespace host
