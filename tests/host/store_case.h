// A test with a new package database.
#ifndef TESTS_HOST_STORE_CASE_H_
#define TESTS_HOST_STORE_CASE_H_

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/host/package_store.h"
#include "tests/support/files.h"

class Store : public testing::Test {
 protected:
  Store() { host::PackageStore(file(), host::PackageStore::Mode::kCreate); }

  std::filesystem::path file() const { return directory_.path() / "packages.db"; }
  host::PackageStore Open(host::PackageStore::Mode mode = host::PackageStore::Mode::kReadWrite) const {
    return {file(), mode};
  }
  std::vector<std::string> Ids() const {
    std::vector<std::string> ids;
    for (const auto& package : Open(host::PackageStore::Mode::kReadOnly).List()) ids.push_back(package.id);
    return ids;
  }
  // Runs SQL behind the store's back.
  void Sql(const std::string& sql) const {
    sqlite3* connection = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(file().c_str(), &connection));
    EXPECT_EQ(SQLITE_OK, sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr))
        << sqlite3_errmsg(connection);
    sqlite3_close(connection);
  }
  int Rows(const std::string& table) const {
    sqlite3* connection = nullptr;
    sqlite3_open(file().c_str(), &connection);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(connection, ("SELECT count(*) FROM " + table).c_str(), -1, &statement, nullptr);
    const int count = sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int(statement, 0) : -1;
    sqlite3_finalize(statement);
    sqlite3_close(connection);
    return count;
  }
  const std::filesystem::path& directory() const { return directory_.path(); }

 private:
  support::TempDir directory_;
};

#endif
