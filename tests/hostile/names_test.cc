// Names with unusual bytes, names of the maximum length, and longer paths than allowed.
#include <climits>

#include "plugin/hooks.h"
#include "tests/hostile/deep_tree.h"
#include "tests/hostile/watched_device.h"

namespace hostile {
namespace {

const Names kHostileNames = {"line\nbreak.dll",
                             "\033[2J\033[31mred.dll",
                             "%n%s%n%s%x%99999d.dll",
                             "\xff\xfe\x80.dll",
                             "\xc0\xaf.dll",
                             " .dll",
                             ".dll",
                             "..dll",
                             "-rf.dll",
                             "$(reboot);`x`.dll",
                             "a:b.dll",
                             "[END].dll",
                             "\\..\\x.dll",
                             "\"'.dll",
                             "\x7f\x01\r\b.dll"};

TEST(HostileNames, a_duplicate_is_dealt_with_whatever_its_name_is_made_of) {
  for (const std::string& name : kHostileNames) {
    OnWatchedDevice([&](const WatchedDevice& device) {
      WriteFile(Core(name));
      WriteFile(InPackage(name));
      const Outcome outcome = device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
      EXPECT_EQ("### INSTALL : morvath : pkg\n" + DuplicateLine(Core(name), InPackage(name)), outcome.standard_error);
      EXPECT_EQ((Names{name + "_deleted"}), NamesInRoot());
      EXPECT_EQ(InformationText(Core(name), InPackage(name)), ReadFile(InPackage(name + "_deleted")));
      EXPECT_TRUE(device.Logged("Duplicated : " + InPackage(name)));
    });
  }
}

HOSTILE_TEST(HostileNames, directories_are_walked_whatever_their_names_are_made_of) {
  for (const std::string& name : kHostileNames) WriteFile(InPackage(name + "/A.dll"));
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  for (const std::string& name : kHostileNames) {
    EXPECT_EQ((Names{"A.dll_deleted"}), support::NamesIn(InPackage(name))) << name;
  }
}

HOSTILE_TEST(HostileNames, names_that_would_break_the_cache_list_are_left_out_of_it) {
  WriteFile(kTpaFile, "[START][END]");
  for (const char* name : {"a:evil.dll", "b[END].dll", "c[1].dll", "[START].dll", "d.dll", "e\n.dll", "f].dll"}) {
    WriteFile(InPackage("shared/res/") + name);
  }
  device.SendCoba(PKGMGR_PARSER_PLUGIN_CLEAN);
  const std::string directory = InPackage("shared/res/");
  EXPECT_EQ("[START]:" + directory + "d.dll:" + directory + "e\n.dll:" + directory + "f].dll[END]", ReadFile(kTpaFile));
  device.Send(PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL);
  EXPECT_EQ("[START][END]", ReadFile(kTpaFile)) << "nothing of the package is left";
}

// A name of `size` bytes that ends in ".dll".
std::string LongName(std::size_t size) { return std::string(size - 4, 'n') + ".dll"; }

HOSTILE_TEST(HostileNames, the_longest_name_goes_without_an_information_file) {
  for (const std::size_t size : {std::size_t{NAME_MAX}, std::size_t{NAME_MAX} - 7, std::size_t{NAME_MAX} - 8}) {
    WriteFile(Core(LongName(size)));
    WriteFile(InPackage(LongName(size)));
  }
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  EXPECT_EQ((Names{LongName(NAME_MAX - 8) + "_deleted"}), NamesInRoot());
}

HOSTILE_TEST(HostileNames, what_lies_deeper_than_a_path_can_say_stays) {
  // The package's root is so long that the walk reaches the limit within its ten levels.
  const std::string level(NAME_MAX, 'd');
  std::string root = kRoot;
  while (root.size() + level.size() + 1 < PATH_MAX - 3 * level.size()) root += "/" + level;
  std::filesystem::create_directories(root);
  device.platform().packages[0].applications[0].root = root;
  MakeDeepTree(root, level, 8);
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  const std::size_t reachable = (PATH_MAX - 1 - root.size() - std::string("/A.dll").size()) / (level.size() + 1);
  EXPECT_LE(2u, reachable);
  EXPECT_EQ(8 - reachable, CountBelow(kRoot, "A.dll"));
}

HOSTILE_TEST(HostileNames, a_root_longer_than_a_path_can_be_is_passed_over) {
  device.platform().packages[0].applications[0].root = kRoot + ("/" + std::string(10 * PATH_MAX, 'r'));
  WriteFile(InPackage("A.dll"));
  MakeCacheFiles();
  EXPECT_EQ(0, device.Send(PKGMGR_PARSER_PLUGIN_INSTALL).result);
  device.Send(PKGMGR_PARSER_PLUGIN_UNINSTALL);
  EXPECT_TRUE(IsThere(InPackage("A.dll")));
}

}  // namespace
}  // namespace hostile
