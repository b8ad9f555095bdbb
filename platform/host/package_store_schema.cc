// The tables of the package database.
#include "platform/host/package_store_schema.h"

#include "platform/host/device_error.h"

namespace host {
namespace {

constexpr int64_t kSchemaVersion = 1;

constexpr const char* kTables = R"sql(
CREATE TABLE packages (
  id TEXT PRIMARY KEY NOT NULL,
  version TEXT NOT NULL,
  type TEXT NOT NULL,
  root TEXT NOT NULL,
  main_app_id TEXT NOT NULL
) STRICT;
CREATE TABLE applications (
  id TEXT PRIMARY KEY NOT NULL,
  package_id TEXT NOT NULL REFERENCES packages (id) ON DELETE CASCADE,
  position INTEGER NOT NULL,
  kind TEXT NOT NULL,
  type TEXT NOT NULL,
  exec TEXT NOT NULL,
  UNIQUE (package_id, position)
) STRICT;
CREATE TABLE metadata (
  app_id TEXT NOT NULL REFERENCES applications (id) ON DELETE CASCADE,
  position INTEGER NOT NULL,
  key TEXT NOT NULL,
  value TEXT NOT NULL,
  PRIMARY KEY (app_id, position)
) STRICT;
CREATE TABLE privileges (
  package_id TEXT NOT NULL REFERENCES packages (id) ON DELETE CASCADE,
  position INTEGER NOT NULL,
  name TEXT NOT NULL,
  PRIMARY KEY (package_id, position)
) STRICT;
)sql";

void CreateTables(const SqliteDatabase& database) {
  database.Execute(kTables);
  database.Execute(("PRAGMA user_version = " + std::to_string(kSchemaVersion)).c_str());
}

int64_t SchemaVersion(const SqliteDatabase& database) {
  SqliteStatement version(database, "PRAGMA user_version");
  version.Step();
  return version.Number(0);
}

}  // namespace

void CreateSchema(const SqliteDatabase& database) {
  if (SchemaVersion(database) != 0) return;
  // Not every file system can hold a write-ahead log; SQLite then stays with its rollback journal.
  SqliteStatement(database, "PRAGMA journal_mode = WAL").Step();
  SqliteTransaction transaction(database, SqliteTransaction::Kind::kWrite);
  if (SchemaVersion(database) == 0) CreateTables(database);  // unless another process was quicker
  transaction.Commit();
}

void CheckSchema(const SqliteDatabase& database) {
  const int64_t version = SchemaVersion(database);
  if (version == kSchemaVersion) return;
  const std::string file = database.file().string();
  if (version > kSchemaVersion) {
    throw DeviceError(file + ": made by a newer orvelbox (schema " + std::to_string(version) + ", this one reads " +
                      std::to_string(kSchemaVersion) + "); use that version, or another device with --device");
  }
  throw DeviceError(file + ": is no package database; restore it, or make a new device with: orvelbox init");
}

}  // namespace host
