// Pipes, sockets, devices and directories where files are expected. A process that waits for one is killed.
#include <fcntl.h>
#include <unistd.h>

#include "base/unique_fd.h"
#include "plugin/hooks.h"
#include "tests/hostile/watched_device.h"

namespace hostile {
namespace {

constexpr unsigned kTimeout = 20;  // seconds

void OnDeviceWithTimeout(const std::function<void(const WatchedDevice&)>& body) {
  OnWatchedDevice([&](const WatchedDevice& device) {
    alarm(kTimeout);
    body(device);
  });
}

#define IMPATIENT_TEST(suite, name) FRAMED_TEST(OnDeviceWithTimeout, const WatchedDevice& device, suite, name)

IMPATIENT_TEST(SpecialFiles, pipes_and_sockets_with_names_of_assemblies_stay) {
  fs::create_directories(InPackage("lib"));
  for (const char* name : {"A.dll", "lib/B.dll"}) support::MakePipe(InPackage(name));
  for (const char* name : {"B.dll", "lib/A.dll"}) support::MakeSocket(InPackage(name));
  EXPECT_EQ(0, device.Send(PKGMGR_PARSER_PLUGIN_INSTALL).result);
  EXPECT_EQ((Names{"A.dll", "B.dll", "lib"}), NamesInRoot());
  EXPECT_EQ((Names{"A.dll", "B.dll"}), support::NamesIn(InPackage("lib")));
}

TEST(SpecialFiles, a_root_or_lib_that_is_a_pipe_is_passed_over) {
  OnDeviceWithTimeout([](const WatchedDevice& device) {
    support::MakePipe(InPackage("lib"));
    WriteFile(InPackage("A.dll"));
    device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
    EXPECT_EQ((Names{"A.dll_deleted", "lib"}), NamesInRoot());
  });
  OnDeviceWithTimeout([](const WatchedDevice& device) {
    fs::remove(kRoot);
    support::MakePipe(kRoot);
    EXPECT_EQ(0, device.Send(PKGMGR_PARSER_PLUGIN_INSTALL).result);
    EXPECT_TRUE(fs::is_fifo(kRoot));
  });
}

IMPATIENT_TEST(SpecialFiles, a_dll_that_is_a_directory_is_walked_and_stays) {
  WriteFile(InPackage("A.dll/B.dll"));
  WriteFile(InPackage("A.dll/Own.dll"));
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  EXPECT_EQ((Names{"A.dll"}), NamesInRoot());
  EXPECT_EQ((Names{"B.dll_deleted", "Own.dll"}), support::NamesIn(InPackage("A.dll")));
}

IMPATIENT_TEST(SpecialFiles, an_information_file_in_the_place_of_which_something_else_stands_is_not_written) {
  for (const char* dll : {"A.dll", "B.dll", "pipes/A.dll", "pipes/B.dll"}) WriteFile(InPackage(dll));
  fs::create_directories(InPackage("A.dll_deleted"));
  support::MakeSocket(InPackage("B.dll_deleted"));
  for (const char* pipe : {"pipes/A.dll_deleted", "pipes/B.dll_deleted"}) support::MakePipe(InPackage(pipe));
  fs::create_hard_link(InPackage("pipes/B.dll_deleted"), InPackage("pipes/C.dll_deleted"));
  const UniqueFd listener(open(InPackage("pipes/B.dll_deleted").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  ASSERT_LE(0, listener.get());
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  EXPECT_EQ((Names{"A.dll_deleted", "B.dll_deleted", "pipes"}), NamesInRoot());
  EXPECT_TRUE(fs::is_empty(InPackage("A.dll_deleted")));
  EXPECT_TRUE(fs::is_socket(InPackage("B.dll_deleted")));
  EXPECT_EQ((Names{"A.dll_deleted", "B.dll_deleted", "C.dll_deleted"}), support::NamesIn(InPackage("pipes")));
  for (const char* name : {"pipes/A.dll_deleted", "pipes/B.dll_deleted"}) EXPECT_TRUE(fs::is_fifo(InPackage(name)));
  char heard = 0;
  EXPECT_GE(0, read(listener.get(), &heard, 1));
}

TEST(SpecialFiles, cache_files_that_are_none_read_as_empty_and_stay) {
  OnDeviceWithTimeout([](const WatchedDevice& device) {
    support::MakePipe(kTpaFile);
    fs::create_directory(kCobaFile);
    WriteFile(InPackage("shared/res/X.dll"));
    device.SendCoba(PKGMGR_PARSER_PLUGIN_CLEAN);
    device.Send(PKGMGR_PARSER_PLUGIN_UNINSTALL);
    EXPECT_TRUE(fs::is_fifo(kTpaFile));
    EXPECT_TRUE(fs::is_directory(kCobaFile));
  });
  OnDeviceWithTimeout([](const WatchedDevice& device) {
    support::MakeSocket(kTpaFile);
    support::MakeSocket(kCobaFile);
    device.SendCoba(PKGMGR_PARSER_PLUGIN_CLEAN);
    EXPECT_TRUE(fs::is_socket(kTpaFile));
    EXPECT_TRUE(fs::is_socket(kCobaFile));
  });
}

IMPATIENT_TEST(SpecialFiles, a_pipe_in_the_temporary_files_place_never_becomes_a_cache_file) {
  MakeCacheFiles();
  support::MakePipe(kTemporaryTpa);
  device.Send(PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL);
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(kTpaFile)));
  EXPECT_EQ("[START]/opt/usr/apps/other/Y.dll[END]", ReadFile(kTpaFile));
}

}  // namespace
}  // namespace hostile
