// A full disk: one clear error line, and no change.
#include <sys/mount.h>

#include <fstream>

#include "platform/host/files.h"
#include "platform/host/log_file.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

constexpr const char* kSmallDisk = "/opt";

// Fills the disk to the last byte.
void FillUp() {
  std::ofstream filler(fs::path(kSmallDisk) / "filler");
  const std::string block(4096, 'x');
  while (filler.write(block.data(), 4096).flush()) continue;
}

// A package record of several hundred thousand bytes.
host::Package LargePackage() {
  auto package = SamplePackage("q");
  package.privileges.assign(20'000, "privilege");
  return package;
}

class FullDisk : public MachineTest {
 protected:
  // Runs `body` in a process with a disk of `size` at kSmallDisk.
  static void OnSmallDisk(const char* size, const std::function<void()>& body) {
    OnEmptiedMachine([&] {
      const std::string options = std::string("size=") + size;
      ASSERT_EQ(0, mount("tmpfs", kSmallDisk, "tmpfs", 0, options.c_str()));
      body();
    });
  }
};

TEST_F(FullDisk, no_half_device_is_left) {
  // From a disk that is too small for anything to one that is one block too small.
  for (const char* size : {"4k", "16k", "40k"}) {
    OnSmallDisk(size, [&] {
      EXPECT_THAT(ErrorOf([] { host::CreateDevice("/opt/new/device"); }), EndsWith("; free some space and try again"))
          << size;
      EXPECT_THAT(support::NamesIn(kSmallDisk), ElementsAre()) << size;
    });
  }
}

TEST_F(FullDisk, the_database_stays_as_it_was) {
  OnSmallDisk("1m", [] {
    PackageStore("/opt/packages.db", PackageStore::Mode::kCreate).Put(SamplePackage("p"));
    FillUp();
    const auto put_large = [] { PackageStore("/opt/packages.db", PackageStore::Mode::kReadWrite).Put(LargePackage()); };
    EXPECT_EQ("/opt/packages.db: disk I/O error (No space left on device); free some space and try again",
              ErrorOf(put_large));
    EXPECT_EQ(1u, PackageStore("/opt/packages.db", PackageStore::Mode::kReadOnly).List().size());
    fs::resize_file("/opt/filler", fs::file_size("/opt/filler") - 100'000);
    EXPECT_EQ("/opt/packages.db: database or disk is full; free some space and try again", ErrorOf(put_large));
    fs::remove("/opt/filler");
    const auto packages = PackageStore("/opt/packages.db", PackageStore::Mode::kReadOnly).List();
    ASSERT_EQ(1u, packages.size());
    EXPECT_EQ("p", packages[0].id);
  });
}

TEST_F(FullDisk, a_file_is_replaced_whole_or_not_at_all) {
  OnSmallDisk("1m", [] {
    host::CreateFile("/opt/file", "old");
    FillUp();
    EXPECT_THAT(ErrorOf([] { host::ReplaceFile("/opt/file", std::string(100'000, 'n')); }),
                EndsWith(": cannot write: No space left on device; free some space and try again"));
    EXPECT_EQ("old", ReadFile("/opt/file"));
    EXPECT_THAT(support::NamesIn(kSmallDisk), ElementsAre("file", "filler"));
  });
}

TEST_F(FullDisk, no_torn_log_record_is_left) {
  OnSmallDisk("1m", [] {
    ASSERT_TRUE(host::AppendLogRecord("/opt/log", 'I', "T", "first"));
    const std::string before = ReadFile("/opt/log");
    FillUp();
    // The rest of the log's last block can hold only the beginning of this record.
    EXPECT_FALSE(host::AppendLogRecord("/opt/log", 'I', "T", std::string(100'000, 'x')));
    EXPECT_EQ(before, ReadFile("/opt/log"));
  });
}

}  // namespace
}  // namespace host_tests
