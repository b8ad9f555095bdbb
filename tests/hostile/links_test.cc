// Symbolic and hard links wherever a package, or a process in the cache directory, can create one.
#include <unistd.h>

#include "plugin/hooks.h"
#include "tests/hostile/watched_device.h"

namespace hostile {
namespace {

HOSTILE_TEST(Links, a_lib_that_leads_to_others_loses_them_nothing) {
  fs::create_directory_symlink(kVictims, InPackage("lib"));
  WriteFile(InPackage("bin/notes.txt"), "mine");
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  EXPECT_EQ((Names{"bin", "lib"}), NamesInRoot());
  EXPECT_TRUE(fs::is_symlink(InPackage("lib")));
}

TEST(Links, a_lib_that_is_a_file_or_a_loop_is_passed_over) {
  for (const char* target : {"lib", "nowhere", "../pkg"}) {
    OnWatchedDevice([&](const WatchedDevice& device) {
      fs::create_symlink(target, InPackage("lib"));
      WriteFile(InPackage("bin/A.dll"));
      device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
      EXPECT_EQ((Names{"A.dll_deleted"}), support::NamesIn(InPackage("bin")));
    });
  }
}

HOSTILE_TEST(Links, directories_that_lead_out_of_the_package_are_not_entered) {
  fs::create_directories(InPackage("bin"));
  fs::create_directory_symlink(kVictims, InPackage("bin/out"));
  fs::create_directory_symlink(support::kCoreDirectory, InPackage("bin/core.dll"));
  fs::create_directory_symlink("..", InPackage("bin/up"));
  // Not "/": a broken walk that runs as root must delete only files of the sandbox.
  fs::create_directory_symlink("/opt/usr", InPackage("above"));
  EXPECT_EQ(0, device.Send(PKGMGR_PARSER_PLUGIN_INSTALL).result);
  EXPECT_EQ((Names{"core.dll", "out", "up"}), support::NamesIn(InPackage("bin")));
}

HOSTILE_TEST(Links, a_dll_that_is_a_link_stays_and_so_does_what_it_leads_to) {
  fs::create_symlink(Core("A.dll"), InPackage("A.dll"));
  fs::create_symlink(Victim("B.dll"), InPackage("B.dll"));
  EXPECT_EQ(0, device.Send(PKGMGR_PARSER_PLUGIN_INSTALL).result);
  EXPECT_EQ((Names{"A.dll", "B.dll"}), NamesInRoot());
}

HOSTILE_TEST(Links, a_dll_that_is_a_hard_link_loses_its_name_only) {
  fs::create_hard_link(Victim("A.dll"), InPackage("A.dll"));
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  EXPECT_EQ((Names{"A.dll_deleted"}), NamesInRoot());
}

// The information file's name, taken before the plug-in needs it.

void ExpectInformationFile() {
  EXPECT_EQ((Names{"A.dll_deleted"}), NamesInRoot());
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(InPackage("A.dll_deleted"))));
  EXPECT_EQ(InformationText(Core("A.dll"), InPackage("A.dll")), ReadFile(InPackage("A.dll_deleted")));
}

TEST(Links, a_link_in_the_information_files_place_is_replaced_wherever_it_leads) {
  const Names targets = {Victim("notes.txt"),    Core("A.dll"), kVictims, "A.dll_deleted", "A.dll", "gone",
                         "/opt/usr/made-by-root"};
  for (const std::string& target : targets) {
    OnWatchedDevice([&](const WatchedDevice& device) {
      WriteFile(InPackage("A.dll"));
      fs::create_symlink(target, InPackage("A.dll_deleted"));
      device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
      ExpectInformationFile();
    });
  }
}

HOSTILE_TEST(Links, a_hard_link_in_the_information_files_place_is_replaced_and_its_file_not_written) {
  WriteFile(InPackage("A.dll"));
  fs::create_hard_link(Victim("notes.txt"), InPackage("A.dll_deleted"));
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  ExpectInformationFile();
}

// The cache files and their temporary ones.

TEST(Links, links_in_the_cache_files_places_are_replaced_and_never_written_through) {
  for (Hook* hook : {PKGMGR_PARSER_PLUGIN_UNINSTALL, PKGMGR_PARSER_PLUGIN_CLEAN}) {
    OnWatchedDevice([&](const WatchedDevice& device) {
      MakeCacheFiles();
      for (const char* file : {kTpaFile, kCobaFile}) {
        fs::rename(file, Victim(fs::path(file).filename().string()));
        fs::create_symlink(Victim(fs::path(file).filename().string()), file);
      }
      device.SendCoba(hook);
      EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(kCobaFile)));
      EXPECT_NE(std::string::npos, ReadFile(kCobaFile).find("/opt/usr/apps/other/"));
    });
  }
}

HOSTILE_TEST(Links, hard_links_in_the_cache_files_places_are_replaced_and_never_written_through) {
  MakeCacheFiles();
  fs::create_hard_link(kTpaFile, Victim("TPA.txt"));
  fs::create_hard_link(kCobaFile, Victim("CoBA.txt"));
  device.Send(PKGMGR_PARSER_PLUGIN_UNINSTALL);
  EXPECT_EQ("[START]/opt/usr/apps/other/Y.dll[END]", ReadFile(kTpaFile));
  EXPECT_NE(ReadFile(kTpaFile), ReadFile(Victim("TPA.txt")));
}

HOSTILE_TEST(Links, hard_links_in_the_temporary_files_places_are_never_written_through) {
  MakeCacheFiles();
  fs::create_hard_link(Victim("notes.txt"), kTemporaryTpa);
  fs::create_hard_link(Victim("A.dll"), kTemporaryCoba);
  device.Send(PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL);
  EXPECT_EQ("[START]/opt/usr/apps/other/Y.dll[END]", ReadFile(kTpaFile));
  EXPECT_EQ("[START]/opt/usr/apps/other/[END]", ReadFile(kCobaFile));
}

HOSTILE_TEST(Links, a_cache_file_that_leads_to_an_endless_device_reads_as_empty) {
  alarm(5);  // ends the test before memory runs out
  fs::create_symlink("/dev/zero", kTpaFile);
  fs::create_symlink("/dev/zero", kCobaFile);
  device.SendCoba(PKGMGR_PARSER_PLUGIN_CLEAN);
  EXPECT_EQ("/dev/zero", fs::read_symlink(kTpaFile));
  EXPECT_EQ("/dev/zero", fs::read_symlink(kCobaFile));
}

HOSTILE_TEST(Links, shared_resources_that_lead_elsewhere_are_listed_under_the_packages_own_root) {
  MakeCacheFiles();
  fs::create_directories(InPackage("shared"));
  fs::create_directory_symlink(kVictims, InPackage("shared/res"));
  device.SendCoba(PKGMGR_PARSER_PLUGIN_CLEAN);
  EXPECT_EQ("[START]/opt/usr/apps/other/Y.dll:" + InPackage("shared/res/A.dll") + ":" + InPackage("shared/res/B.dll") +
                "[END]",
            ReadFile(kTpaFile));
}

}  // namespace
}  // namespace hostile
