// Changes and queries of the package database.
#include "platform/host/package_store.h"

#include <SQLiteCpp/VariadicBind.h>

#include "platform/host/device_error.h"
#include "platform/host/package_database.h"

namespace host {
namespace {

using SQLite::Database;
using SQLite::Statement;
using SQLite::Transaction;

int FlagsFor(PackageStore::Mode mode) {
  if (mode == PackageStore::Mode::kReadOnly) return SQLite::OPEN_READONLY;
  return SQLite::OPEN_READWRITE | (mode == PackageStore::Mode::kCreate ? SQLite::OPEN_CREATE : 0);
}

std::string Text(Statement& row, int column) { return row.getColumn(column).getString(); }

void RefuseForeignApplications(const Database& database, const std::filesystem::path& file, const Package& package) {
  Statement owner(database, "SELECT package_id FROM applications WHERE id = ?1");
  for (const auto& application : package.applications) {
    owner.reset();
    owner.bind(1, application.id);
    if (owner.executeStep()) {
      throw DeviceError(file.string() + ": application " + application.id + " belongs to package " + Text(owner, 0) +
                        " already; uninstall that one, or give the application another id");
    }
  }
}

// Runs a statement that changes the database. Returns how many rows it changed.
template <typename... Values>
int Change(const Database& database, const char* sql, const Values&... values) {
  Statement statement(database, sql);
  SQLite::bind(statement, values...);
  return statement.exec();
}

bool Delete(const Database& database, const std::string& package_id) {
  return Change(database, "DELETE FROM packages WHERE id = ?1", package_id) > 0;
}

void InsertApplication(const Database& database, const std::string& package_id, int position,
                       const Application& application) {
  Change(database,
         "INSERT INTO applications (id, package_id, position, kind, type, exec) VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
         application.id, package_id, position, application.kind, application.type, application.exec);
  int entry_position = 0;
  for (const auto& entry : application.metadata) {
    Change(database, "INSERT INTO metadata (app_id, position, key, value) VALUES (?1, ?2, ?3, ?4)", application.id,
           entry_position++, entry.key, entry.value);
  }
}

void InsertPackage(const Database& database, const Package& package) {
  Change(database, "INSERT INTO packages (id, version, type, root, main_app_id) VALUES (?1, ?2, ?3, ?4, ?5)",
         package.id, package.version, package.type, package.root, package.main_app_id);
  int position = 0;
  for (const auto& application : package.applications) {
    InsertApplication(database, package.id, position++, application);
  }
  position = 0;
  for (const auto& privilege : package.privileges) {
    Change(database, "INSERT INTO privileges (package_id, position, name) VALUES (?1, ?2, ?3)", package.id, position++,
           privilege);
  }
}

// Reads whole packages, each of whose statements SQLite compiles only once.
class PackageReader {
 public:
  explicit PackageReader(const Database& database)
      : applications_(database,
                      "SELECT id, kind, type, exec FROM applications WHERE package_id = ?1 ORDER BY position"),
        metadata_(database, "SELECT key, value FROM metadata WHERE app_id = ?1 ORDER BY position"),
        privileges_(database, "SELECT name FROM privileges WHERE package_id = ?1 ORDER BY position") {}

  // The package in a row (id, version, type, root, main_app_id).
  Package Read(Statement& own) {
    Package package{Text(own, 0), Text(own, 1), Text(own, 2), Text(own, 3), Text(own, 4), {}, {}};
    ForEachRow(applications_, package.id, [&](Statement& row) {
      package.applications.push_back({Text(row, 0), Text(row, 1), Text(row, 2), Text(row, 3), {}});
    });
    for (auto& application : package.applications) {
      ForEachRow(metadata_, application.id, [&](Statement& row) {
        application.metadata.push_back({Text(row, 0), Text(row, 1)});
      });
    }
    ForEachRow(privileges_, package.id, [&](Statement& row) { package.privileges.push_back(Text(row, 0)); });
    return package;
  }

 private:
  // Calls `take` for every row that the statement returns for `id`.
  template <typename Take>
  static void ForEachRow(Statement& row, const std::string& id, const Take& take) {
    row.reset();
    row.bind(1, id);
    while (row.executeStep()) take(row);
  }

  Statement applications_;
  Statement metadata_;
  Statement privileges_;
};

std::string FilterQuery(size_t entries) {
  std::string sql = "SELECT package_id, id FROM applications WHERE TRUE";
  for (size_t i = 0; i < entries; ++i) {
    sql += " AND EXISTS (SELECT 1 FROM metadata WHERE app_id = applications.id AND key = ? AND value = ?)";
  }
  return sql + " ORDER BY package_id, position";
}

std::optional<Package> First(std::vector<Package> packages) {
  if (packages.empty()) return std::nullopt;
  return std::move(packages.front());
}

}  // namespace

PackageStore::PackageStore(const std::filesystem::path& file, Mode mode)
    : file_(file), database_(OpenPackageDatabase(file, FlagsFor(mode))) {}

PackageStore::~PackageStore() = default;

void PackageStore::Put(const Package& package) try {
  Transaction change(*database_, SQLite::TransactionBehavior::IMMEDIATE);
  Delete(*database_, package.id);
  RefuseForeignApplications(*database_, file_, package);
  InsertPackage(*database_, package);
  change.commit();
} catch (const SQLite::Exception& refusal) {
  ThrowRefusal(file_, database_.get(), refusal);
}

bool PackageStore::Remove(const std::string& package_id) try {
  return Delete(*database_, package_id);
} catch (const SQLite::Exception& refusal) {
  ThrowRefusal(file_, database_.get(), refusal);
}

std::vector<Package> PackageStore::Select(const std::string& condition, const std::string& id) const try {
  const Transaction one_state(*database_);
  Statement row(*database_, "SELECT id, version, type, root, main_app_id FROM packages WHERE " + condition);
  row.bind(1, id);
  PackageReader reader(*database_);
  std::vector<Package> packages;
  while (row.executeStep()) packages.push_back(reader.Read(row));
  return packages;
} catch (const SQLite::Exception& refusal) {
  ThrowRefusal(file_, database_.get(), refusal);
}

std::optional<Package> PackageStore::Find(const std::string& package_id) const {
  return First(Select("id = ?1", package_id));
}

std::optional<Package> PackageStore::FindByApplication(const std::string& app_id) const {
  return First(Select("id = (SELECT package_id FROM applications WHERE id = ?1)", app_id));
}

// The empty id is the smallest.
std::vector<Package> PackageStore::List() const { return Select("id >= ?1 ORDER BY id", ""); }

std::vector<std::pair<std::string, std::string>> PackageStore::ApplicationsWithMetadata(
    const std::vector<MetadataEntry>& entries) const try {
  Statement row(*database_, FilterQuery(entries.size()));
  int parameter = 0;
  for (const auto& entry : entries) {
    row.bind(++parameter, entry.key);
    row.bind(++parameter, entry.value);
  }
  std::vector<std::pair<std::string, std::string>> applications;
  while (row.executeStep()) applications.emplace_back(Text(row, 0), Text(row, 1));
  return applications;
} catch (const SQLite::Exception& refusal) {
  ThrowRefusal(file_, database_.get(), refusal);
}

}  // namespace host
