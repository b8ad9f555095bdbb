// The package database.
#include "platform/host/package_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/host/machine.h"
#include "tests/host/samples.h"
#include "tests/support/child.h"

namespace {

namespace fs = std::filesystem;
using host::PackageStore;
using samples::ErrorOf;
using samples::SamplePackage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

class Store : public testing::Test {
 protected:
  Store() { PackageStore(file(), PackageStore::Mode::kCreate); }

  fs::path file() const { return directory_.path() / "packages.db"; }
  PackageStore Open(PackageStore::Mode mode = PackageStore::Mode::kReadWrite) const { return {file(), mode}; }
  std::vector<std::string> Ids() const {
    std::vector<std::string> ids;
    for (const auto& package : Open(PackageStore::Mode::kReadOnly).List()) ids.push_back(package.id);
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
  const fs::path& directory() const { return directory_.path(); }

 private:
  support::TempDir directory_;
};

void ExpectSame(const host::Package& expected, const host::Package& actual) {
  EXPECT_EQ(expected.id, actual.id);
  EXPECT_EQ(expected.version, actual.version);
  EXPECT_EQ(expected.type, actual.type);
  EXPECT_EQ(expected.root, actual.root);
  EXPECT_EQ(expected.main_app_id, actual.main_app_id);
  EXPECT_EQ(expected.privileges, actual.privileges);
  ASSERT_EQ(expected.applications.size(), actual.applications.size());
  for (size_t i = 0; i < expected.applications.size(); ++i) {
    const auto& left = expected.applications[i];
    const auto& right = actual.applications[i];
    EXPECT_EQ(std::tie(left.id, left.kind, left.type, left.exec),
              std::tie(right.id, right.kind, right.type, right.exec));
    ASSERT_EQ(left.metadata.size(), right.metadata.size());
    for (size_t j = 0; j < left.metadata.size(); ++j) {
      EXPECT_EQ(left.metadata[j].key, right.metadata[j].key);
      EXPECT_EQ(left.metadata[j].value, right.metadata[j].value);
    }
  }
}

TEST_F(Store, a_package_comes_back_with_every_order_and_repeat) {
  Open().Put(SamplePackage("p"));
  const auto found = Open(PackageStore::Mode::kReadOnly).Find("p");
  ASSERT_TRUE(found);
  ExpectSame(SamplePackage("p"), *found);
}

TEST_F(Store, odd_texts_come_back) {
  host::Package package = SamplePackage("it's \"p\"; DROP TABLE packages;--");
  package.version = "";
  package.privileges = {"", "\xff", std::string("nul\0inside", 10), "日本"};
  Open().Put(package);
  ExpectSame(package, Open().Find(package.id).value());
}

TEST_F(Store, an_unknown_package_is_not_found) {
  EXPECT_FALSE(Open().Find("p"));
  EXPECT_FALSE(Open().FindByApplication("p.main"));
  EXPECT_FALSE(Open().Remove("p"));
}

TEST_F(Store, a_package_is_found_by_each_application) {
  Open().Put(SamplePackage("p"));
  Open().Put(SamplePackage("q"));
  EXPECT_EQ("q", Open().FindByApplication("q.main").value().id);
  EXPECT_EQ("q", Open().FindByApplication("q.service").value().id);
}

TEST_F(Store, putting_again_replaces_the_package_whole) {
  Open().Put(SamplePackage("p"));
  const host::Package bare{"p", "2", "rpk", "/opt/usr/globalapps/p", "", {}, {}};
  Open().Put(bare);
  ExpectSame(bare, Open().Find("p").value());
  EXPECT_EQ(0, Rows("applications") + Rows("metadata") + Rows("privileges"));
}

TEST_F(Store, removing_takes_all_that_belongs_to_the_package_and_nothing_else) {
  Open().Put(SamplePackage("p"));
  Open().Put(SamplePackage("q"));
  EXPECT_TRUE(Open().Remove("p"));
  ExpectSame(SamplePackage("q"), Open().Find("q").value());
  EXPECT_EQ(2, Rows("applications"));
  EXPECT_EQ(5, Rows("metadata"));
  EXPECT_EQ(3, Rows("privileges"));
}

TEST_F(Store, packages_are_listed_by_byte) {
  for (const char* id : {"b", "B", "a.c", "a", "\xC3\xA4"}) Open().Put(SamplePackage(id));
  EXPECT_THAT(Ids(), ElementsAre("B", "a", "a.c", "b", "\xC3\xA4"));
}

TEST_F(Store, applications_are_filtered_by_all_entries) {
  for (const char* id : {"q", "p"}) Open().Put(SamplePackage(id));
  const auto store = Open(PackageStore::Mode::kReadOnly);
  EXPECT_THAT(store.ApplicationsWithMetadata({}),
              ElementsAre(Pair("p", "p.main"), Pair("p", "p.service"), Pair("q", "q.main"), Pair("q", "q.service")));
  EXPECT_THAT(store.ApplicationsWithMetadata({{"coba", "true"}}),
              ElementsAre(Pair("p", "p.main"), Pair("q", "q.main")));
  EXPECT_THAT(store.ApplicationsWithMetadata({{"mark", "second"}, {"only", "q"}}), ElementsAre(Pair("q", "q.main")));
  EXPECT_THAT(store.ApplicationsWithMetadata({{"coba", "true"}, {"coba", "false"}}), IsEmpty());
}

TEST_F(Store, applications_keep_the_order_of_the_manifest) {
  auto package = SamplePackage("p");
  std::swap(package.applications[0], package.applications[1]);
  Open().Put(package);
  EXPECT_THAT(Open().ApplicationsWithMetadata({}), ElementsAre(Pair("p", "p.service"), Pair("p", "p.main")));
}

TEST_F(Store, an_application_of_another_package_is_refused_and_nothing_changes) {
  Open().Put(SamplePackage("p"));
  auto thief = SamplePackage("q");
  thief.applications[1].id = "p.main";
  EXPECT_EQ(file().string() +
                ": application p.main belongs to package p already; uninstall that one, or give the application "
                "another id",
            ErrorOf([&] { Open().Put(thief); }));
  EXPECT_THAT(Ids(), ElementsAre("p"));
}

TEST_F(Store, a_failed_replacement_leaves_the_old_package) {
  Open().Put(SamplePackage("p"));
  auto twice = SamplePackage("p");
  twice.version = "2";
  twice.applications[1].id = twice.applications[0].id;
  EXPECT_THAT(ErrorOf([&] { Open().Put(twice); }), HasSubstr(file().string() + ": "));
  ExpectSame(SamplePackage("p"), Open().Find("p").value());
}

TEST_F(Store, creating_again_keeps_what_is_there) {
  Open().Put(SamplePackage("p"));
  Open(PackageStore::Mode::kCreate);
  EXPECT_THAT(Ids(), ElementsAre("p"));
}

TEST_F(Store, a_newer_schema_is_refused_and_left_alone) {
  Sql("PRAGMA user_version = 2");
  for (const auto mode : {PackageStore::Mode::kReadOnly, PackageStore::Mode::kReadWrite, PackageStore::Mode::kCreate}) {
    EXPECT_EQ(file().string() +
                  ": made by a newer orvelbox (schema 2, this one reads 1); use that version, or another device with "
                  "--device",
              ErrorOf([&] { Open(mode); }));
  }
}

TEST_F(Store, what_is_no_database_is_told) {
  support::WriteFile(file(), "certainly no database, but long enough to look at");
  EXPECT_EQ(file().string() + ": file is not a database; restore it, or make a new device with: orvelbox init",
            ErrorOf([&] { Open(PackageStore::Mode::kReadOnly); }));
}

TEST_F(Store, an_empty_file_is_no_package_database) {
  support::WriteFile(file(), "");
  EXPECT_THAT(ErrorOf([&] { Open(PackageStore::Mode::kReadOnly); }), HasSubstr(": is no package database; restore it"));
}

TEST_F(Store, a_database_cut_short_is_told) {
  auto large = SamplePackage("p");
  large.privileges.assign(10'000, "privilege");
  Open().Put(large);
  fs::resize_file(file(), 8192);
  EXPECT_THAT(ErrorOf([&] { Open(PackageStore::Mode::kReadOnly).List(); }),
              HasSubstr(file().string() + ": database disk image is malformed; restore it"));
}

TEST_F(Store, a_missing_database_is_told_and_not_made) {
  fs::remove(file());
  EXPECT_THAT(ErrorOf([&] { Open(PackageStore::Mode::kReadOnly); }), HasSubstr(": unable to open database file; "));
  EXPECT_THAT(ErrorOf([&] { Open(PackageStore::Mode::kReadWrite); }), HasSubstr(": unable to open database file; "));
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(Store, a_reader_cannot_change_anything) {
  EXPECT_THAT(ErrorOf([&] { Open(PackageStore::Mode::kReadOnly).Put(SamplePackage("p")); }),
              HasSubstr("attempt to write a readonly database"));
}

TEST_F(Store, readers_who_may_write_nothing_read_all_the_same) {
  Open().Put(SamplePackage("p"));
  ASSERT_EQ(0, chmod(file().c_str(), 0444));
  ASSERT_EQ(0, chmod(directory().c_str(), 0555));
  support::InFreshProcess([&] {
    machine::BecomeOrdinaryUser();
    ASSERT_NE(0, access(directory().c_str(), W_OK));
    EXPECT_THAT(Ids(), ElementsAre("p"));
  });
  ASSERT_EQ(0, chmod(directory().c_str(), 0755));
}

TEST_F(Store, such_readers_read_beside_a_writer_too) {
  auto writer = Open();
  writer.Put(SamplePackage("p"));
  ASSERT_EQ(0, chmod(directory().c_str(), 0555));
  support::InFreshProcess([&] {
    machine::BecomeOrdinaryUser();
    EXPECT_THAT(Ids(), ElementsAre("p"));
  });
  ASSERT_EQ(0, chmod(directory().c_str(), 0755));
}

TEST_F(Store, any_character_may_stand_in_the_name_of_the_directory) {
  const fs::path odd = directory() / "50%25 #1? ä\n" / "packages.db";
  fs::create_directory(odd.parent_path());
  PackageStore(odd, PackageStore::Mode::kCreate).Put(SamplePackage("p"));
  ASSERT_EQ(0, chmod(odd.parent_path().c_str(), 0555));
  support::InFreshProcess([&] {
    machine::BecomeOrdinaryUser();
    EXPECT_TRUE(PackageStore(odd, PackageStore::Mode::kReadOnly).Find("p"));
  });
  ASSERT_EQ(0, chmod(odd.parent_path().c_str(), 0755));
}

TEST_F(Store, concurrent_writers_wait_for_each_other) {
  constexpr int kWriters = 4;
  for (int writer = 0; writer < kWriters; ++writer) {
    if (fork() != 0) continue;
    for (int i = 0; i < 10; ++i) Open().Put(SamplePackage(std::to_string(writer) + "." + std::to_string(i)));
    _exit(0);
  }
  for (int status = 0; wait(&status) > 0;) EXPECT_EQ(0, status);
  EXPECT_EQ(40u, Ids().size());
}

TEST_F(Store, a_reader_sees_the_last_complete_state_during_a_change) {
  Open().Put(SamplePackage("p"));
  sqlite3* writer = nullptr;
  ASSERT_EQ(SQLITE_OK, sqlite3_open(file().c_str(), &writer));
  ASSERT_EQ(SQLITE_OK, sqlite3_exec(writer, "BEGIN IMMEDIATE; DELETE FROM packages", nullptr, nullptr, nullptr));
  EXPECT_THAT(Ids(), ElementsAre("p"));
  sqlite3_close(writer);
}

}  // namespace
