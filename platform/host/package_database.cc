// Opens the package database, creates its tables, and reports errors.
#include "platform/host/package_database.h"

#include <sqlite3.h>
#include <unistd.h>

#include "platform/host/device_error.h"
#include "platform/host/files.h"
#include "platform/host/percent_encoding.h"

namespace host {
namespace {

constexpr int kPatienceMilliseconds = 5000;

constexpr int kSchemaVersion = 1;

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

const char* WayOut(int code) {
  switch (code & 0xFF) {
    case SQLITE_FULL:
      return "; free some space and try again";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "; another process is using it, try again when it is done";
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      return "; restore it, or make a new device with: orvelbox init";
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
    case SQLITE_PERM:
      return "; check that it exists and who may write there";
    default:
      return "";
  }
}

std::string ImmutableUri(const std::filesystem::path& file) {
  const auto plain = [](char c) { return c != '%' && c != '?' && c != '#' && static_cast<unsigned char>(c) > 0x20; };
  return "file:" + PercentEncoded(file.native(), plain) + "?immutable=1";
}

// A write-ahead log needs an index file beside it. A process that cannot create one, for lack of rights or space, can
// still read a database without a log, because that is complete in one file.
bool IsOnlyReadableAsImmutable(SQLite::Database& database, const std::filesystem::path& file) {
  const int kind = database.tryExec("PRAGMA schema_version") & 0xFF;
  std::error_code ignored;
  const auto log_size = std::filesystem::file_size(file.native() + "-wal", ignored);
  const bool has_log = !ignored && log_size > 0;
  return !has_log && (kind == SQLITE_CANTOPEN || kind == SQLITE_READONLY || kind == SQLITE_IOERR);
}

// SQLite creates the files beside a database with the database's permissions. If these were restricted for a while, the
// files still are, and nobody could write the database any more, nor read what is in its log.
void AlignPermissions(const std::filesystem::path& file) {
  if (access(file.c_str(), W_OK) != 0) return;
  std::error_code ignored;
  const auto permissions = std::filesystem::status(file, ignored).permissions();
  for (const char* suffix : {"-wal", "-shm"}) {
    const std::string beside = file.native() + suffix;
    if (access(beside.c_str(), R_OK | W_OK) != 0) std::filesystem::permissions(beside, permissions, ignored);
  }
}

int SchemaVersion(SQLite::Database& database) { return database.execAndGet("PRAGMA user_version").getInt(); }

void CreateTables(SQLite::Database& database) {
  if (SchemaVersion(database) != 0) return;
  // Some file systems do not support a write-ahead log; SQLite then keeps its rollback journal.
  database.exec("PRAGMA journal_mode = WAL");
  SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
  if (SchemaVersion(database) == 0) {  // unless another process created the tables first
    database.exec(kTables);
    database.exec("PRAGMA user_version = " + std::to_string(kSchemaVersion));
  }
  transaction.commit();
}

void CheckVersion(SQLite::Database& database, const std::string& file) {
  const int version = SchemaVersion(database);
  if (version == kSchemaVersion) return;
  if (version > kSchemaVersion) {
    throw DeviceError(file + ": made by a newer orvelbox (schema " + std::to_string(version) + ", this one reads " +
                      std::to_string(kSchemaVersion) + "); use that version, or another device with --device");
  }
  throw DeviceError(file + ": is no package database; restore it, or make a new device with: orvelbox init");
}

}  // namespace

std::unique_ptr<SQLite::Database> OpenPackageDatabase(const std::filesystem::path& file, int flags) {
  std::unique_ptr<SQLite::Database> database;
  const auto open = [&](const std::string& name, int how) {
    database = std::make_unique<SQLite::Database>(name, how, kPatienceMilliseconds);
  };
  try {
    AlignPermissions(file);
    open(file, flags);
    if ((flags & SQLite::OPEN_READONLY) != 0 && IsOnlyReadableAsImmutable(*database, file)) {
      open(ImmutableUri(file), SQLite::OPEN_READONLY | SQLite::OPEN_URI);
    }
    database->exec("PRAGMA foreign_keys = ON");
    if ((flags & SQLite::OPEN_CREATE) != 0) CreateTables(*database);
    CheckVersion(*database, file);
  } catch (const SQLite::Exception& refusal) {
    ThrowRefusal(file, database.get(), refusal);
  }
  return database;
}

void ThrowRefusal(const std::filesystem::path& file, const SQLite::Database* database,
                  const SQLite::Exception& refusal) {
  std::string text = file.string() + ": " + refusal.what();
  const int error = database == nullptr ? 0 : sqlite3_system_errno(database->getHandle());
  if ((refusal.getErrorCode() & 0xFF) == SQLITE_IOERR && error != 0) {
    text.append(" (").append(ErrorText(error)).append(")").append(UsualWayOut(error));
  }
  throw DeviceError(text + WayOut(refusal.getErrorCode()));
}

}  // namespace host
