// Files that disappear or change between two accesses of the plug-in. The test makes the change at each event of the
// journal.
#include "plugin/hooks.h"
#include "tests/hostile/watched_device.h"

namespace hostile {
namespace {

const std::string kComparing = "### Duplicated Checker ###";
const std::string kFound = "### Duplicated DLL found ###";
const std::string kRemoving = "ovplatform_getenv";  // the last access before the removal

// An INSTALL during which the DLL changes, at each of these moments.
void ChangeAtEveryMoment(const std::function<void()>& change, const std::function<void(const WatchedDevice&)>& check) {
  for (const std::string& moment : {kComparing, kFound, kRemoving}) {
    OnWatchedDevice([&](const WatchedDevice& device) {
      WriteFile(InPackage("A.dll"));
      device.At(moment, change);
      device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
      check(device);
    });
  }
}

void ExpectInformationFileOnly(const WatchedDevice& /*device*/) {
  EXPECT_EQ((Names{"A.dll_deleted"}), NamesInRoot());
  EXPECT_FALSE(fs::is_symlink(InPackage("A.dll_deleted")));
}

TEST(ChangingTree, a_dll_that_vanishes_before_its_removal_counts_and_is_told_of) {
  ChangeAtEveryMoment([] { fs::remove(InPackage("A.dll")); }, ExpectInformationFileOnly);
}

TEST(ChangingTree, a_dll_that_becomes_a_link_loses_the_link_only) {
  const auto change = [] {
    fs::remove(InPackage("A.dll"));
    fs::create_symlink(Victim("A.dll"), InPackage("A.dll"));
  };
  ChangeAtEveryMoment(change, ExpectInformationFileOnly);
}

TEST(ChangingTree, an_information_files_name_that_is_taken_in_the_last_moment_is_never_followed) {
  ChangeAtEveryMoment([] { fs::create_symlink(Victim("notes.txt"), InPackage("A.dll_deleted")); },
                      ExpectInformationFileOnly);
}

TEST(ChangingTree, a_dll_that_becomes_a_directory_stays) {
  const auto change = [] {
    fs::remove(InPackage("A.dll"));
    WriteFile(InPackage("A.dll/inside"));
  };
  ChangeAtEveryMoment(change, [](const WatchedDevice& device) {
    EXPECT_TRUE(IsThere(InPackage("A.dll/inside")));
    EXPECT_TRUE(device.Logged("Failed to remove " + InPackage("A.dll") + " : Is a directory"));
  });
}

HOSTILE_TEST(ChangingTree, a_dll_that_became_a_link_after_it_was_listed_is_kept) {
  WriteFile(InPackage("A.dll"));
  WriteFile(InPackage("B.dll"));
  std::string exchanged;
  device.platform().on_event = [&](const doubles::Event& event) {
    const std::string message = doubles::MessageOf(event.log);
    if (message.rfind("Duplicated : ", 0) != 0 || !exchanged.empty()) return;
    exchanged = message == "Duplicated : " + InPackage("A.dll") ? "B.dll" : "A.dll";
    fs::remove(InPackage(exchanged));
    fs::create_symlink(Victim(exchanged), InPackage(exchanged));
  };
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  EXPECT_TRUE(fs::is_symlink(InPackage(exchanged)));
  EXPECT_TRUE(device.Logged("Symbolic link is detected : " + InPackage(exchanged)));
  EXPECT_EQ(2u, NamesInRoot().size());
}

TEST(ChangingTree, a_directory_that_vanishes_or_becomes_a_file_is_passed_over) {
  for (const bool leaves_a_file : {false, true}) {
    OnWatchedDevice([&](const WatchedDevice& device) {
      WriteFile(InPackage("A.dll"));
      WriteFile(InPackage("sub/B.dll"));
      device.At(kFound, [&] {
        fs::remove_all(InPackage("sub"));
        if (leaves_a_file) WriteFile(InPackage("sub"), "a file now");
      });
      device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
      EXPECT_EQ((leaves_a_file ? Names{"A.dll_deleted", "sub"} : Names{"A.dll_deleted"}), NamesInRoot());
    });
  }
}

HOSTILE_TEST(ChangingTree, a_whole_package_that_vanishes_during_the_walk_is_the_end_of_it) {
  WriteFile(InPackage("A.dll"));
  for (const char* name : {"one/B.dll", "two/three/B.dll"}) WriteFile(InPackage(name));
  device.At(kRemoving, [] { fs::remove_all(kRoot); });
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  EXPECT_FALSE(IsThere(kRoot));
}

HOSTILE_TEST(ChangingTree, a_cache_file_that_vanishes_between_look_and_read_stays_away) {
  MakeCacheFiles();
  device.At("access cache path", [] { fs::remove(kTpaFile); });
  device.Send(PKGMGR_PARSER_PLUGIN_UNINSTALL);
  EXPECT_FALSE(IsThere(kTpaFile));
  EXPECT_EQ("[START]/opt/usr/apps/other/[END]", ReadFile(kCobaFile));
}

HOSTILE_TEST(ChangingTree, a_cache_file_that_becomes_a_link_after_the_read_is_replaced) {
  MakeCacheFiles();
  device.At("after erase", [] {
    fs::remove(kTpaFile);
    fs::create_symlink(Victim("notes.txt"), kTpaFile);
  });
  device.Send(PKGMGR_PARSER_PLUGIN_UNINSTALL);
  EXPECT_FALSE(fs::is_symlink(kTpaFile));
  EXPECT_EQ("[START]/opt/usr/apps/other/Y.dll[END]", ReadFile(kTpaFile));
}

}  // namespace
}  // namespace hostile
