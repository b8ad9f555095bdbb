// SQLite's handles as C++ owners.
#include "platform/host/sqlite_database.h"

#include <sqlite3.h>

#include "platform/host/device_error.h"
#include "platform/host/files.h"
#include "platform/host/percent_encoding.h"

namespace host {
namespace {

constexpr int kPatienceMilliseconds = 5000;

int OpenFlags(SqliteDatabase::Access access) {
  switch (access) {
    case SqliteDatabase::Access::kReadOnly:
      return SQLITE_OPEN_READONLY;
    case SqliteDatabase::Access::kReadWrite:
      return SQLITE_OPEN_READWRITE;
    default:
      return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  }
}

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

bool MeansNothingCanBeWritten(int code) {
  const int kind = code & 0xFF;
  return kind == SQLITE_CANTOPEN || kind == SQLITE_READONLY || kind == SQLITE_IOERR;
}

std::string ImmutableUri(const std::filesystem::path& file) {
  const auto plain = [](char c) { return c != '%' && c != '?' && c != '#' && static_cast<unsigned char>(c) > 0x20; };
  return "file:" + PercentEncoded(file.native(), plain) + "?immutable=1";
}

}  // namespace

void SqliteDatabase::Close::operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file, Access access) : file_(file) {
  Open(file.native(), OpenFlags(access));
  if (access == Access::kReadOnly) ReopenWhereNothingCanBeWritten();
  Execute("PRAGMA foreign_keys = ON");
}

void SqliteDatabase::Open(const std::string& name, int flags) {
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &connection, flags, nullptr);
  connection_.reset(connection);
  if (code != SQLITE_OK) ThrowError(code);
  sqlite3_extended_result_codes(connection, 1);
  sqlite3_busy_timeout(connection, kPatienceMilliseconds);
}

// A write-ahead log needs an index file beside it. Who cannot make one, for want of rights or space, can still read a
// database without a log: it is complete in itself.
void SqliteDatabase::ReopenWhereNothingCanBeWritten() {
  const int code = sqlite3_exec(connection_.get(), "PRAGMA schema_version", nullptr, nullptr, nullptr);
  std::error_code ignored;
  const auto log_size = std::filesystem::file_size(file_.native() + "-wal", ignored);
  const bool has_log = !ignored && log_size > 0;
  if (!MeansNothingCanBeWritten(code) || has_log) return;
  Open(ImmutableUri(file_), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
}

void SqliteDatabase::Execute(const char* sql) const {
  const int code = sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) ThrowError(code);
}

void SqliteDatabase::ThrowError(int code) const {
  std::string text = file_.string() + ": " + (connection_ ? sqlite3_errmsg(connection_.get()) : sqlite3_errstr(code));
  const int error = connection_ ? sqlite3_system_errno(connection_.get()) : 0;
  if ((code & 0xFF) == SQLITE_IOERR && error != 0) {
    text.append(" (").append(ErrorText(error)).append(")").append(UsualWayOut(error));
  }
  throw DeviceError(text + WayOut(code));
}

void SqliteStatement::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

SqliteStatement::SqliteStatement(const SqliteDatabase& database, std::string_view sql) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  const int code =
      sqlite3_prepare_v2(database.connection_.get(), sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
  statement_.reset(statement);
  if (code != SQLITE_OK) database_.ThrowError(code);
}

SqliteStatement& SqliteStatement::Bind(int index, std::string_view text) {
  // A null pointer would bind NULL, which is no text.
  const char* data = text.empty() ? "" : text.data();
  const int code = sqlite3_bind_text64(statement_.get(), index, data, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
  if (code != SQLITE_OK) database_.ThrowError(code);
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int index, int64_t number) {
  const int code = sqlite3_bind_int64(statement_.get(), index, number);
  if (code != SQLITE_OK) database_.ThrowError(code);
  return *this;
}

bool SqliteStatement::Step() {
  const int code = sqlite3_step(statement_.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) database_.ThrowError(code);
  return code == SQLITE_ROW;
}

void SqliteStatement::Reset() { sqlite3_reset(statement_.get()); }

std::string SqliteStatement::Text(int index) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), index));
  const auto size = static_cast<size_t>(sqlite3_column_bytes(statement_.get(), index));
  return text == nullptr ? std::string() : std::string(text, size);
}

int64_t SqliteStatement::Number(int index) const { return sqlite3_column_int64(statement_.get(), index); }

SqliteTransaction::SqliteTransaction(const SqliteDatabase& database, Kind kind) : database_(database) {
  database_.Execute(kind == Kind::kWrite ? "BEGIN IMMEDIATE" : "BEGIN");
}

SqliteTransaction::~SqliteTransaction() {
  if (open_) sqlite3_exec(database_.connection_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void SqliteTransaction::Commit() {
  database_.Execute("COMMIT");
  open_ = false;
}

}  // namespace host
