// The assembly cache pass with the fixed paths of a device.
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "plugin/catalogues.h"
#include "tests/unit/interposed_files.h"
#include "tests/unit/pass_case.h"

namespace unit {
namespace {

std::string DpcFile(const std::string& name) { return kDpcDirectory + name; }
std::string TvAppApi(const std::string& name) { return kTvAppApiDirectory + name; }

DEVICE_TEST(AssemblyCache, the_platform_is_catalogued_by_name) {
  PutPackage(platform);
  WriteFiles({Core("A.dll"), Core("notes.txt"), Core("sub/Deep.dll"), Framework("F.dll"), Framework("sub/Deep.dll"),
              DpcFile("D.dll"), DpcFile("one/E.dll"), DpcFile("one/two/Deep.dll"), TvAppApi("T.dll"),
              InPackage("lib/L.dll"), InPackage("lib/notes.txt"), InPackage("lib/sub/Deep.dll")});
  EXPECT_EQ("", StandardErrorOf([] { EXPECT_EQ(0, gac("pkg")); }));
  EXPECT_EQ((Catalogue{{"A.dll", Core("A.dll")}, {"notes.txt", Core("notes.txt")}}), coreFX);
  EXPECT_EQ((Catalogue{{"D.dll", DpcFile("D.dll")}, {"E.dll", DpcFile("one/E.dll")}, {"F.dll", Framework("F.dll")}}),
            orvelFX);
  EXPECT_TRUE(coBA.empty());
  EXPECT_EQ((Catalogue{{"L.dll", InPackage("lib/L.dll")}, {"notes.txt", InPackage("lib/notes.txt")}}), appLib);
  EXPECT_TRUE(Holds(platform, {Pass(2, 3, ComparedWithItself(InPackage("lib/L.dll")))}));
}

DEVICE_TEST(AssemblyCache, the_application_api_is_catalogued_for_a_package_with_the_platform_privilege) {
  PutPackage(platform);
  platform.packages[0].privileges = {kPlatformPrivilege};
  WriteFiles({TvAppApi("T.dll"), TvAppApi("sub/Deep.dll"), Framework("F.dll")});
  EXPECT_EQ(0, gac("pkg"));
  EXPECT_EQ((Catalogue{{"F.dll", Framework("F.dll")}, {"T.dll", TvAppApi("T.dll")}}), orvelFX);
  const Source source = Plugin("gac");
  EXPECT_TRUE(Holds(
      platform,
      {TracedPlugin(
          "int gac(const std::string&)",
          {TracedPlugin("bool HasPlatformPrivilege(const std::string&)", HavePrivilege(kPlatformPrivilege)),
           source.Debug("This package has platform privilege. So add tvappapi path"), TracedPlugin(kSearch, Steps{}),
           source.Debug("coreFX  size = %zu", std::size_t{0}), source.Debug("orvelFX size = %zu", std::size_t{2})})}));
}

DEVICE_TEST(AssemblyCache, a_name_keeps_its_first_path_in_the_order_of_the_directories) {
  PutPackage(platform);
  platform.packages[0].privileges = {kPlatformPrivilege};
  WriteFiles({Framework("A.dll"), DpcFile("sub/A.dll"), TvAppApi("A.dll"), DpcFile("sub/B.dll"), TvAppApi("B.dll"),
              Core("A.dll")});
  EXPECT_EQ(0, gac("pkg"));
  EXPECT_EQ((Catalogue{{"A.dll", Framework("A.dll")}, {"B.dll", DpcFile("sub/B.dll")}}), orvelFX);
  EXPECT_EQ((Catalogue{{"A.dll", Core("A.dll")}}), coreFX);
  const std::vector<std::string> messages = platform.Messages();
  EXPECT_EQ("coreFX  size = 1", messages.at(messages.size() - 3));
  EXPECT_EQ("orvelFX size = 2", messages.at(messages.size() - 2));
}

FRESH_TEST(AssemblyCache, the_platform_privilege_is_asked_in_a_frame_of_its_own) {
  PutPackage(platform);
  EXPECT_FALSE(HasPlatformPrivilege("pkg"));
  platform.packages[0].privileges = {kDebuggingPrivilege, kPlatformPrivilege};
  EXPECT_TRUE(HasPlatformPrivilege("pkg"));
  const std::string signature = "bool HasPlatformPrivilege(const std::string&)";
  EXPECT_TRUE(Holds(
      platform, {TracedPlugin(signature, NoPrivilege()), TracedPlugin(signature, HavePrivilege(kPlatformPrivilege))}));
}

DEVICE_TEST(AssemblyCache, missing_platform_directories_are_passed_over) {
  PutPackage(platform);
  for (const char* directory : {kCoreDirectory, kFrameworkDirectory, kDpcDirectory, kTvAppApiDirectory}) {
    fs::remove(fs::path(directory).parent_path());
  }
  EXPECT_EQ("", StandardErrorOf([] { EXPECT_EQ(0, gac("pkg")); }));
  EXPECT_TRUE(Holds(platform, {Pass(0, 0)}));
}

DEVICE_TEST(AssemblyCache, every_duplicate_of_the_package_is_removed_in_one_pass) {
  PutPackage(platform);
  WriteFiles({Core("A.dll"), Framework("F.dll"), InPackage("bin/A.dll"), InPackage("bin/sub/F.dll"),
              InPackage("bin/sub/A.dll"), InPackage("bin/Own.dll"), InPackage("A.dll.config")});
  EXPECT_EQ(-1, RunPass("pkg"));
  EXPECT_EQ((std::vector<std::string>{"A.dll_deleted", "Own.dll", "sub"}), support::NamesIn(InPackage("bin")));
  EXPECT_EQ((std::vector<std::string>{"A.dll_deleted", "F.dll_deleted"}), support::NamesIn(InPackage("bin/sub")));
  EXPECT_TRUE(IsThere(InPackage("A.dll.config")));
  EXPECT_EQ(InformationText(Core("A.dll"), InPackage("bin/A.dll")), ReadFile(InPackage("bin/A.dll_deleted")));
}

DEVICE_TEST(AssemblyCache, a_result_of_minus_one_is_not_undone_by_files_behind) {
  PutPackage(platform);
  WriteFiles({Core("A.dll"), InPackage("A.dll"), InPackage("z/Own.dll")});
  EXPECT_EQ(DuplicateLine(Core("A.dll"), InPackage("A.dll")), StandardErrorOf([] { EXPECT_EQ(-1, gac("pkg")); }));
  EXPECT_TRUE(Holds(platform, {Pass(1, 0, DuplicateRemoved(Core("A.dll"), InPackage("A.dll")))}));
}

DEVICE_TEST(AssemblyCache, the_package_is_walked_nine_levels_below_its_root) {
  PutPackage(platform);
  const std::string tenth = InPackage("1/2/3/4/5/6/7/8/9/A.dll");
  const std::string eleventh = InPackage("1/2/3/4/5/6/7/8/9/10/A.dll");
  WriteFiles({Core("A.dll"), tenth, eleventh});
  EXPECT_EQ(-1, RunPass("pkg"));
  EXPECT_FALSE(IsThere(tenth));
  EXPECT_TRUE(IsThere(eleventh));
}

DEVICE_TEST(AssemblyCache, a_library_is_kept_and_its_copies_elsewhere_in_the_package_go) {
  PutPackage(platform);
  WriteFiles({InPackage("lib/L.dll"), InPackage("bin/L.dll"), InPackage("lib/sub/L.dll")});
  EXPECT_EQ(-1, RunPass("pkg"));
  EXPECT_TRUE(IsThere(InPackage("lib/L.dll")));
  EXPECT_FALSE(IsThere(InPackage("bin/L.dll")));
  EXPECT_FALSE(IsThere(InPackage("lib/sub/L.dll")));
}

DEVICE_TEST(AssemblyCache, a_coba_package_keeps_its_own_shared_assemblies_and_others_lose_theirs) {
  platform.packages.push_back(CobaPackage("pkg", kRoot));
  PutPackage(platform, "other", "/opt/usr/apps/other");
  WriteFiles({InPackage("shared/res/C.dll"), "/opt/usr/apps/other/bin/C.dll"});
  EXPECT_EQ(0, gac("pkg"));
  EXPECT_TRUE(IsThere(InPackage("shared/res/C.dll")));
  EXPECT_EQ(-1, RunPass("other"));
  EXPECT_FALSE(IsThere("/opt/usr/apps/other/bin/C.dll"));
}

DEVICE_TEST(AssemblyCache, links_are_catalogued_by_their_own_path_and_kept_in_the_package) {
  PutPackage(platform);
  WriteFiles({"/opt/usr/store/A.dll", InPackage("bin/A.dll"), InPackage("x/B.dll")});
  fs::create_symlink("/opt/usr/store/A.dll", Core("A.dll"));
  fs::create_symlink("gone", Core("B.dll"));
  fs::create_symlink("A.dll", InPackage("bin/link.dll"));
  fs::create_symlink("../bin", InPackage("x/link to bin"));
  EXPECT_EQ(DuplicateLine(Core("A.dll"), InPackage("bin/A.dll")), StandardErrorOf([] { EXPECT_EQ(-1, gac("pkg")); }));
  EXPECT_EQ((Catalogue{{"A.dll", Core("A.dll")}}), coreFX);
  EXPECT_TRUE(fs::is_symlink(InPackage("bin/link.dll")));
  EXPECT_TRUE(IsThere(InPackage("x/B.dll")));
}

DEVICE_TEST(AssemblyCache, a_package_whose_root_is_a_link_is_walked_like_any_other) {
  PutPackage(platform);
  WriteFiles({Core("A.dll"), "/opt/usr/real/bin/A.dll", "/opt/usr/real/lib/L.dll"});
  fs::create_directory("/opt/usr/apps");
  fs::create_directory_symlink("/opt/usr/real", kRoot);
  EXPECT_EQ(DuplicateLine(Core("A.dll"), InPackage("bin/A.dll")), StandardErrorOf([] { EXPECT_EQ(-1, gac("pkg")); }));
  EXPECT_EQ((std::vector<std::string>{"A.dll_deleted"}), support::NamesIn("/opt/usr/real/bin"));
  EXPECT_TRUE(IsThere(InPackage("lib/L.dll")));
  const std::vector<std::string> messages = platform.Messages();
  EXPECT_EQ(0, std::count(messages.begin(), messages.end(), std::string("Symbolic link is detected : ") + kRoot));
}

DEVICE_TEST(AssemblyCache, a_catalogued_name_whose_file_cannot_be_examined_is_kept_with_an_error_line) {
  PutPackage(platform);
  WriteFiles({Core("A.dll"), InPackage("bin/A.dll")});
  interposed::Files().look_errors = {{InPackage("bin/A.dll"), EIO}};
  EXPECT_EQ("", StandardErrorOf([] { EXPECT_EQ(0, gac("pkg")); }));
  EXPECT_EQ((std::vector<std::string>{"A.dll"}), support::NamesIn(InPackage("bin")));
  EXPECT_TRUE(Holds(platform, {Pass(1, 0, Source("platform_utils", "isRealPath").Error("lstat error."))}));
}

// This process gets a directory of the test as "/" and sees nothing else any more.
DEVICE_TEST(AssemblyCache, a_package_may_have_the_root_directory_itself) {
  WriteFiles({"/opt/usr/jail/A.dll", "/opt/usr/jail/bin/A.dll", "/opt/usr/jail/bin/Own.dll"});
  ASSERT_TRUE(geteuid() == 0 || unshare(CLONE_NEWUSER) == 0);  // so that an ordinary user may do this as well
  ASSERT_EQ(0, chroot("/opt/usr/jail"));
  ASSERT_EQ(0, chdir("/"));
  ASSERT_EQ((std::vector<std::string>{"A.dll", "bin"}), support::NamesIn("/"));
  coreFX = {{"A.dll", Core("A.dll")}};
  EXPECT_EQ(DuplicateLine(Core("A.dll"), "/A.dll") + DuplicateLine(Core("A.dll"), "/bin/A.dll"),
            StandardErrorOf([] { EXPECT_EQ(-1, RemoveDuplicates("/")); }));
  EXPECT_EQ((std::vector<std::string>{"A.dll_deleted", "bin"}), support::NamesIn("/"));
  EXPECT_EQ((std::vector<std::string>{"A.dll_deleted", "Own.dll"}), support::NamesIn("/bin"));
}

DEVICE_TEST(AssemblyCache, a_package_without_a_root_fails_with_the_platform_catalogued) {
  Package package;
  package.id = "pkg";
  platform.packages.push_back(package);
  platform.packages.push_back(CobaPackage("one", "/opt/usr/apps/one"));
  WriteFiles({Core("A.dll"), Framework("F.dll"), "/opt/usr/apps/one/shared/res/C.dll"});
  EXPECT_EQ("### INSTALL : morvath, pkgRoot is empty : pkg\n", StandardErrorOf([] { EXPECT_EQ(-1, gac("pkg")); }));
  EXPECT_EQ(1u, coreFX.size());
  EXPECT_EQ(1u, orvelFX.size());
  EXPECT_EQ(1u, coBA.size());
  EXPECT_TRUE(appLib.empty());
  EXPECT_EQ("orvelFX size = 1", platform.Messages().at(platform.Messages().size() - 2));
}

DEVICE_TEST(AssemblyCache, an_unknown_package_has_no_privilege_and_no_root) {
  EXPECT_EQ("### INSTALL : morvath, pkgRoot is empty : pkg\n", StandardErrorOf([] { EXPECT_EQ(-1, gac("pkg")); }));
  const std::vector<std::string> messages = platform.Messages();
  EXPECT_EQ(1, std::count(messages.begin(), messages.end(), "package_info_create return error code : -1"));
  EXPECT_EQ(1, std::count(messages.begin(), messages.end(),
                          "This package does not have platform privilege. So skip tvappapi path"));
}

}  // namespace
}  // namespace unit
