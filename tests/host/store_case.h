// A test with a new package database.
#ifndef TESTS_HOST_STORE_CASE_H_
#define TESTS_HOST_STORE_CASE_H_

#include <sqlite3.h>

#include <cstdlib>

#include "tests/host/frame.h"

namespace host_tests {

class Store : public DirectoryTest {
 protected:
  Store() { PackageStore(file(), PackageStore::Mode::kCreate); }

  std::filesystem::path file() const { return directory() / "packages.db"; }
  PackageStore Open(PackageStore::Mode mode = PackageStore::Mode::kReadWrite) const { return {file(), mode}; }
  std::vector<std::string> Ids() const {
    std::vector<std::string> ids;
    for (const auto& package : Open(PackageStore::Mode::kReadOnly).List()) ids.push_back(package.id);
    return ids;
  }
  // Runs SQL directly on the database. Returns the resulting number, or -1.
  int Sql(const std::string& sql) const {
    int number = -1;
    const auto note = [](void* result, int, char** values, char**) {
      *static_cast<int*>(result) = std::atoi(values[0]);
      return 0;
    };
    sqlite3* connection = nullptr;
    EXPECT_EQ(SQLITE_OK, sqlite3_open(file().c_str(), &connection));
    EXPECT_EQ(SQLITE_OK, sqlite3_exec(connection, sql.c_str(), note, &number, nullptr)) << sqlite3_errmsg(connection);
    sqlite3_close(connection);
    return number;
  }
  int Rows(const std::string& table) const { return Sql("SELECT count(*) FROM " + table); }
};

}  // namespace host_tests

#endif
