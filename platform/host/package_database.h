// The package database as a file: opening it, its tables and their version, and SQLite's errors. package_store has the
// queries.
#ifndef ORVEL_PLATFORM_HOST_PACKAGE_DATABASE_H_
#define ORVEL_PLATFORM_HOST_PACKAGE_DATABASE_H_

#include <SQLiteCpp/SQLiteCpp.h>

#include <filesystem>
#include <memory>

namespace host {

// Opens `file` with SQLite's `flags` and enables foreign keys; OPEN_CREATE also creates the tables. Waits for other
// processes. Throws DeviceError, also when the tables are of another program version.
std::unique_ptr<SQLite::Database> OpenPackageDatabase(const std::filesystem::path& file, int flags);

// Throws a DeviceError with the file, SQLite's message and the way out. `database` may be null.
[[noreturn]] void ThrowRefusal(const std::filesystem::path& file, const SQLite::Database* database,
                               const SQLite::Exception& refusal);

}  // namespace host

#endif
