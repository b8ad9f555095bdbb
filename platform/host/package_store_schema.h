// The tables of the package database and their version.
#ifndef ORVEL_PLATFORM_HOST_PACKAGE_STORE_SCHEMA_H_
#define ORVEL_PLATFORM_HOST_PACKAGE_STORE_SCHEMA_H_

#include "platform/host/sqlite_database.h"

namespace host {

// Makes the tables in a database that has none yet. Throws DeviceError.
void CreateSchema(const SqliteDatabase& database);

// Throws DeviceError unless the database has the tables of this program's version.
void CheckSchema(const SqliteDatabase& database);

}  // namespace host

#endif
