// The package database with several readers and writers, and files that are no database.
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/host/package_database.h"
#include "tests/host/frame.h"
#include "tests/host/store_case.h"

namespace host_tests {
namespace {

TEST_F(Store, a_newer_schema_is_refused_and_left_alone) {
  Sql("PRAGMA journal_mode = DELETE; PRAGMA user_version = 2");
  const std::string before = ReadFile(file());
  for (const auto mode : {PackageStore::Mode::kReadOnly, PackageStore::Mode::kReadWrite, PackageStore::Mode::kCreate}) {
    EXPECT_EQ(file().string() +
                  ": made by a newer orvelbox (schema 2, this one reads 1); use that version, or another device with "
                  "--device",
              ErrorOf([&] { Open(mode); }));
  }
  EXPECT_TRUE(before == ReadFile(file()));
}

TEST_F(Store, what_is_no_database_is_told) {
  WriteFile(file(), "certainly no database, but long enough to look at");
  EXPECT_EQ(file().string() + ": file is not a database; restore it, or make a new device with: orvelbox init",
            ErrorOf([&] { Open(PackageStore::Mode::kReadOnly); }));
}

TEST_F(Store, an_empty_file_is_no_package_database) {
  WriteFile(file(), "");
  EXPECT_EQ(file().string() + ": is no package database; restore it, or make a new device with: orvelbox init",
            ErrorOf([&] { Open(PackageStore::Mode::kReadOnly); }));
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
  for (const auto mode : {PackageStore::Mode::kReadOnly, PackageStore::Mode::kReadWrite}) {
    EXPECT_EQ(file().string() + ": unable to open database file; check that it exists and who may write there",
              ErrorOf([&] { Open(mode); }));
  }
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(Store, a_refusal_tells_the_way_out) {
  const auto refusal_of = [this](int code) {
    return ErrorOf([&] { host::ThrowRefusal(file(), nullptr, SQLite::Exception("refused", code)); });
  };
  const std::string refused = file().string() + ": refused";
  for (const int code : {SQLITE_BUSY, SQLITE_BUSY_SNAPSHOT, SQLITE_LOCKED}) {
    EXPECT_EQ(refused + "; another process is using it, try again when it is done", refusal_of(code));
  }
  for (const int code : {SQLITE_CANTOPEN, SQLITE_READONLY, SQLITE_PERM}) {
    EXPECT_EQ(refused + "; check that it exists and who may write there", refusal_of(code));
  }
  for (const int code : {SQLITE_NOTADB, SQLITE_CORRUPT}) {
    EXPECT_EQ(refused + "; restore it, or make a new device with: orvelbox init", refusal_of(code));
  }
  EXPECT_EQ(refused + "; free some space and try again", refusal_of(SQLITE_FULL));
  EXPECT_EQ(refused, refusal_of(SQLITE_MISUSE));
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
  ASSERT_EQ(0, chmod(file().c_str(), 0644));
  auto writer = Open();
  writer.Put(SamplePackage("p"));
  ASSERT_EQ(0, chmod(directory().c_str(), 0555));
  support::InFreshProcess([&] {
    machine::BecomeOrdinaryUser();
    EXPECT_THAT(Ids(), ElementsAre("p"));
  });
  ASSERT_EQ(0, chmod(directory().c_str(), 0755));
}

TEST_F(Store, a_database_that_was_read_only_for_a_while_can_be_written_again) {
  ASSERT_EQ(0, chmod(directory().c_str(), 0777));
  support::InFreshProcess([&] {
    machine::BecomeOrdinaryUser();
    const fs::path own = directory() / "own.db";
    PackageStore(own, PackageStore::Mode::kCreate).Put(SamplePackage("p"));
    ASSERT_EQ(0, chmod(own.c_str(), 0444));
    EXPECT_TRUE(PackageStore(own, PackageStore::Mode::kReadOnly).Find("p"));
    ASSERT_EQ(0, chmod(own.c_str(), 0644));
    PackageStore(own, PackageStore::Mode::kReadWrite).Put(SamplePackage("q"));
    EXPECT_TRUE(PackageStore(own, PackageStore::Mode::kReadOnly).Find("q"));
    const auto restrict_files_beside = [&] {
      for (const char* beside : {"-wal", "-shm"}) ASSERT_EQ(0, chmod((own.native() + beside).c_str(), 0200)) << beside;
    };
    restrict_files_beside();
    PackageStore writer(own, PackageStore::Mode::kReadWrite);
    writer.Put(SamplePackage("r"));
    restrict_files_beside();
    EXPECT_TRUE(PackageStore(own, PackageStore::Mode::kReadOnly).Find("r"));
  });
}

TEST_F(Store, any_character_may_stand_in_the_name_of_the_directory) {
  const fs::path odd = directory() / "50%25 #1? ä\n" / "packages.db";
  fs::create_directory(odd.parent_path());
  PackageStore(odd, PackageStore::Mode::kCreate).Put(SamplePackage("p"));
  ASSERT_EQ(0, chmod(odd.c_str(), 0444));
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
}  // namespace host_tests
