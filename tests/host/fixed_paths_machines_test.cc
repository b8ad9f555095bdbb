// The fixed paths on machines with different file systems.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/host/fixed_paths.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

class FixedPathsOf : public MachineTest {};

TEST_F(FixedPathsOf, a_root_under_opt_itself) {
  OnEmptiedMachine([] {
    LayOutRoot("/opt/desk/device/root");
    WriteFile("/opt/other", "beside");
    fs::current_path("/opt/desk");
    support::WithFixedPaths("/opt/desk/device/root", [] {
      ExpectDeviceAtFixedPaths();
      EXPECT_EQ("beside", ReadFile("/opt/other"));
      EXPECT_EQ("/opt/desk", fs::current_path());
      EXPECT_EQ("user area", ReadFile("../usr/globalapps/p/x"));  // by path, in the new mounts
      WriteFile("device/root/opt/usr/new", "1");
      EXPECT_EQ("1", ReadFile("/opt/usr/new"));
    });
    EXPECT_EQ("1", ReadFile("/opt/desk/device/root/opt/usr/new"));
    EXPECT_THAT(support::NamesIn("/opt"), ElementsAre("desk", "other"));
  });
}

TEST_F(FixedPathsOf, a_root_under_usr_share_itself) {
  OnEmptiedMachine([] {
    LayOutRoot("/usr/share/desk/root");
    fs::current_path("/usr/share/desk");
    support::WithFixedPaths("root", [] {
      ExpectDeviceAtFixedPaths();
      EXPECT_EQ("/usr/share/desk", fs::current_path());
      EXPECT_EQ("platform", ReadFile("../dotnet.orvel/framework/F.dll"));
    });
  });
}

TEST_F(FixedPathsOf, a_root_under_a_fixed_path_is_refused) {
  OnEmptiedMachine([] {
    LayOutRoot("/opt/usr/device/root");
    EXPECT_EQ(
        "/opt/usr/device/root: lies under /opt/usr, which the device has to provide itself; use a device in another "
        "place",
        ErrorOf([] { host::RunWithFixedPaths("/opt/usr/device/root", [] { return 0; }); }));
  });
}

TEST_F(FixedPathsOf, a_machine_that_has_them_hides_its_own) {
  LayOutRoot(root());
  OnEmptiedMachine([this] {
    WriteFile("/opt/usr/home/secret", "x");
    WriteFile("/usr/share/dotnet.orvel/secret", "x");
    WriteFile("/etc/release", "the machine's");
    WriteFile("/etc/hosts", "stays");
    support::WithFixedPaths(root(), [] {
      ExpectDeviceAtFixedPaths();
      EXPECT_FALSE(fs::exists("/opt/usr/home/secret"));
      EXPECT_FALSE(fs::exists("/usr/share/dotnet.orvel/secret"));
      EXPECT_FALSE(fs::exists("/etc/release"));
      EXPECT_EQ("stays", ReadFile("/etc/hosts"));
      WriteFile("/opt/usr/new", "1");
    });
    EXPECT_THAT(support::NamesIn("/opt/usr"), ElementsAre("home"));
    EXPECT_EQ("the machine's", ReadFile("/etc/release"));
  });
}

// A mount through a link would disappear with the link, for example when another process finishes its work in place.
TEST_F(FixedPathsOf, a_machine_with_links_there_shows_none) {
  LayOutRoot(root());
  OnEmptiedMachine([this] {
    fs::create_directories("/opt/elsewhere/kept");
    fs::create_symlink("/opt/elsewhere", "/opt/usr");
    fs::create_symlink("/nowhere", "/etc/release");
    support::WithFixedPaths(root(), [] {
      ExpectDeviceAtFixedPaths();
      EXPECT_FALSE(fs::is_symlink("/opt/usr"));
      EXPECT_FALSE(fs::is_symlink("/etc/release"));
      EXPECT_THAT(support::NamesIn("/opt/elsewhere"), ElementsAre("kept"));
    });
    EXPECT_TRUE(fs::is_symlink("/opt/usr"));
  });
}

TEST_F(FixedPathsOf, a_machine_with_a_release_marker_shows_the_roots) {
  LayOutRoot(root());
  WriteFile(root() / "etc/release", "the device's");
  OnEmptiedMachine([this] {
    WriteFile("/etc/release", "the machine's");
    support::WithFixedPaths(root(), [] { EXPECT_EQ("the device's", ReadFile("/etc/release")); });
  });
}

TEST_F(FixedPathsOf, a_machine_without_opt) {
  LayOutRoot(root());
  OnEmptiedMachine([this] {
    machine::RemoveOpt();
    ASSERT_FALSE(fs::exists("/opt"));
    fs::current_path(root());
    support::WithFixedPaths(root(), [this] {
      ExpectDeviceAtFixedPaths();
      EXPECT_EQ(root(), fs::current_path());
      EXPECT_EQ(0, access("/proc/self/status", R_OK));
      EXPECT_EQ("platform", ReadFile("usr/share/dotnet.orvel/framework/F.dll"));
      WriteFile("/opt/usr/new", "1");
    });
    EXPECT_FALSE(fs::exists("/opt"));
    EXPECT_EQ("1", ReadFile(root() / "opt/usr/new"));
  });
}

TEST_F(FixedPathsOf, entries_of_every_kind_stay_beside_them) {
  LayOutRoot(root());
  OnEmptiedMachine([this] {
    WriteFile("/opt/directory/file", "inside");
    fs::create_symlink("directory/file", "/opt/link");
    fs::create_symlink("nowhere", "/opt/dangling");
    ASSERT_EQ(0, mkfifo("/opt/fifo", 0600));
    ASSERT_EQ(0, chmod("/opt", 0711));
    support::WithFixedPaths(root(), [] {
      EXPECT_EQ("inside", ReadFile("/opt/link"));
      EXPECT_EQ("nowhere", fs::read_symlink("/opt/dangling"));
      EXPECT_TRUE(fs::is_fifo("/opt/fifo"));
      EXPECT_EQ(static_cast<fs::perms>(0711), fs::status("/opt").permissions());
      WriteFile("/opt/directory/file", "changed");
    });
    EXPECT_EQ("changed", ReadFile("/opt/directory/file"));
  });
}

TEST_F(FixedPathsOf, nothing_written_beside_them_vanishes_silently) {
  LayOutRoot(root());
  OnEmptiedMachine([this] {
    support::WithFixedPaths(root(), [] {
      EXPECT_LT(open("/opt/new", O_WRONLY | O_CREAT | O_CLOEXEC, 0600), 0);
      EXPECT_EQ(EROFS, errno);
    });
  });
}

TEST_F(FixedPathsOf, a_child_that_cannot_be_set_up_is_told) {
  LayOutRoot(root());
  OnEmptiedMachine([this] {
    WriteFile("/opt/usr", "a file where a directory belongs");
    EXPECT_EQ("cannot mount at /opt/usr: Not a directory",
              ErrorOf([this] { host::RunWithFixedPaths(root(), [] { return 0; }); }));
  });
}

}  // namespace
}  // namespace host_tests
