// SQLite's handles as C++ owners, with every refusal as a DeviceError. No tables are known here.
#ifndef ORVEL_PLATFORM_HOST_SQLITE_DATABASE_H_
#define ORVEL_PLATFORM_HOST_SQLITE_DATABASE_H_

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace host {

// One connection to a database file, with foreign keys on; it waits for other processes. Its members throw
// DeviceError naming the file, SQLite's message and the way out.
class SqliteDatabase {
 public:
  enum class Access { kReadOnly, kReadWrite, kCreate };

  // Opens `file`. kReadOnly also reads a file in a directory where nothing may be written.
  SqliteDatabase(const std::filesystem::path& file, Access access);

  // Runs statements that give no rows.
  void Execute(const char* sql) const;

  const std::filesystem::path& file() const { return file_; }

 private:
  friend class SqliteStatement;
  friend class SqliteTransaction;
  struct Close {
    void operator()(sqlite3* connection) const;
  };

  // Opens `name`, a path or a URI.
  void Open(const std::string& name, int flags);
  void ReopenWhereNothingCanBeWritten();
  [[noreturn]] void ThrowError(int code) const;

  std::filesystem::path file_;
  std::unique_ptr<sqlite3, Close> connection_;
};

// A prepared statement.
class SqliteStatement {
 public:
  // `database` must outlive the statement.
  SqliteStatement(const SqliteDatabase& database, std::string_view sql);

  // Sets parameter `index`, counted from 1; the text is copied.
  SqliteStatement& Bind(int index, std::string_view text);
  SqliteStatement& Bind(int index, int64_t number);
  // Goes to the next row; false after the last one.
  bool Step();
  // Makes the statement ready to run once more.
  void Reset();

  // Column `index` of the row, counted from 0.
  std::string Text(int index) const;
  int64_t Number(int index) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  const SqliteDatabase& database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

// A transaction, rolled back at its end unless it was committed.
class SqliteTransaction {
 public:
  enum class Kind { kRead, kWrite };

  // `database` must outlive the transaction.
  SqliteTransaction(const SqliteDatabase& database, Kind kind);
  SqliteTransaction(const SqliteTransaction&) = delete;
  SqliteTransaction& operator=(const SqliteTransaction&) = delete;
  ~SqliteTransaction();

  void Commit();

 private:
  const SqliteDatabase& database_;
  bool open_ = true;
};

}  // namespace host

#endif
