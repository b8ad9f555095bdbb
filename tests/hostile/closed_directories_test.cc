// Directories that may not be read, searched or written, processed as an ordinary user.
#include "plugin/hooks.h"
#include "tests/hostile/watched_device.h"

namespace hostile {
namespace {

constexpr fs::perms kListOnly = fs::perms::owner_read;
constexpr fs::perms kSearchOnly = fs::perms::owner_exec;
constexpr fs::perms kReadOnly = fs::perms::owner_read | fs::perms::owner_exec;

// Sends INSTALL while the package's directory has these permissions.
Outcome InstallWith(const WatchedDevice& device, const std::string& directory, fs::perms permissions) {
  fs::permissions(directory, permissions);
  const Outcome outcome = device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  fs::permissions(directory, fs::perms::owner_all);
  return outcome;
}

void OnClosedDevice(const std::function<void(const WatchedDevice&)>& body) {
  OnWatchedDevice([&](const WatchedDevice& device) {
    ASSERT_TRUE(support::GiveUpPrivileges());
    for (const char* name : {"closed/A.dll", "open/B.dll"}) WriteFile(InPackage(name));
    body(device);
  });
}

#define CLOSED_TEST(suite, name) FRAMED_TEST(OnClosedDevice, const WatchedDevice& device, suite, name)

void ExpectLeft(const Names& in_closed) {
  EXPECT_EQ(in_closed, support::NamesIn(InPackage("closed")));
  EXPECT_EQ((Names{"B.dll_deleted"}), support::NamesIn(InPackage("open"))) << "the walk went on";
}

TEST(ClosedDirectories, one_that_may_not_be_read_is_passed_over) {
  for (const fs::perms permissions : {fs::perms::none, kSearchOnly}) {
    OnClosedDevice([&](const WatchedDevice& device) {
      InstallWith(device, InPackage("closed"), permissions);
      ExpectLeft({"A.dll"});
    });
  }
}

CLOSED_TEST(ClosedDirectories, in_one_that_may_be_listed_but_not_searched_everything_stays) {
  InstallWith(device, InPackage("closed"), kListOnly);
  ExpectLeft({"A.dll"});
  EXPECT_TRUE(device.Logged("lstat error."));
}

CLOSED_TEST(ClosedDirectories, in_one_that_may_not_be_written_a_duplicate_stays_and_is_told_of) {
  InstallWith(device, InPackage("closed"), kReadOnly);
  ExpectLeft({"A.dll"});
  EXPECT_TRUE(device.Logged("Failed to remove " + InPackage("closed/A.dll") + " : Permission denied"));
}

CLOSED_TEST(ClosedDirectories, a_root_that_may_not_be_read_has_no_files) {
  EXPECT_EQ(0, InstallWith(device, kRoot, fs::perms::none).result);
  EXPECT_EQ((Names{"A.dll"}), support::NamesIn(InPackage("closed")));
}

CLOSED_TEST(ClosedDirectories, a_root_that_may_be_listed_but_not_searched_keeps_everything) {
  WriteFile(InPackage("A.dll"));
  EXPECT_EQ(0, InstallWith(device, kRoot, kListOnly).result);
  EXPECT_EQ((Names{"A.dll", "closed", "open"}), NamesInRoot());
}

}  // namespace
}  // namespace hostile
