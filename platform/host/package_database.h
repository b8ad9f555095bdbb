// The package database as a file: how it is opened, its tables and their version, and what SQLite's refusals become.
// What is in the tables is package_store's.
#ifndef ORVEL_PLATFORM_HOST_PACKAGE_DATABASE_H_
#define ORVEL_PLATFORM_HOST_PACKAGE_DATABASE_H_

#include <SQLiteCpp/SQLiteCpp.h>

#include <filesystem>
#include <memory>

namespace host {

// Opens `file` with SQLite's `flags` and foreign keys on; OPEN_CREATE also makes the tables. Waits for other processes.
// Throws DeviceError, also when the tables are not those of this program's version.
std::unique_ptr<SQLite::Database> OpenPackageDatabase(const std::filesystem::path& file, int flags);

// Throws a DeviceError that names the file, SQLite's message and the way out. `database` may be null.
[[noreturn]] void ThrowRefusal(const std::filesystem::path& file, const SQLite::Database* database,
                               const SQLite::Exception& refusal);

}  // namespace host

#endif
