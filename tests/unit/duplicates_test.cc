// Which pair of files is a duplicate, and the removal of one. The information file has its own tests.
#include "plugin/duplicates.h"

#include <optional>

#include "tests/support/unit_case.h"

namespace unit {
namespace {

constexpr const char* kOrigin = "/usr/share/dotnet.orvel/framework/A.dll";

struct DpcRow {
  const char* path;
  bool is_dpc;
};

TEST(Duplicates, a_dpc_path_has_a_directory_of_that_name) {
  const DpcRow rows[] = {{"/usr/share/dotnet.orvel/d.pc/A.dll", true},
                         {"/a/d.pc/b/A.dll", true},
                         {"/d.pc/", true},
                         {"d.pc/A.dll", false},
                         {"/a/d.pc", false},
                         {"/a/xd.pc/A.dll", false},
                         {"/a/d.pcx/A.dll", false},
                         {"/a/D.PC/A.dll", false},
                         {"/a/dxpc/A.dll", false},
                         {"", false}};
  for (const DpcRow& row : rows) {
    Platform& platform = doubles::Reset();
    EXPECT_EQ(row.is_dpc, isDPCDll(row.path)) << row.path;
    EXPECT_TRUE(
        Holds(platform, {TracedPlugin("bool isDPCDll(const std::string&)",
                                      row.is_dpc ? Plugin("isDPCDll").Debug("Is DPC DLL %s\n", row.path) : Steps{})}));
  }
}

TEST(Duplicates, the_dpc_line_carries_its_own_line_break_before_the_reset) {
  Platform& platform = doubles::Reset();
  isDPCDll("/a/d.pc/A.dll");
  const doubles::LogLine& line = platform.journal.at(2).log;
  EXPECT_EQ("morvath: isDPCDll(" + std::to_string(line.line) + ") > \033[0mIs DPC DLL /a/d.pc/A.dll\n\033[0m\n",
            line.text);
}

struct PairRow {
  const char* what;
  std::string origin;
  std::string duplicated;
  Steps inside;
};

TEST(Duplicates, the_same_path_and_dpc_paths_are_no_duplicates) {
  const PairRow rows[] = {
      {"the same path", "/p/A.dll", "/p/A.dll", {}},
      {"the same DPC path", "/d.pc/A.dll", "/d.pc/A.dll", {}},
      {"the platform's copy is DPC", "/usr/d.pc/A.dll", "/p/A.dll", Dpc("/usr/d.pc/A.dll")},
      {"the package's copy is DPC", "/usr/A.dll", "/p/d.pc/A.dll", Join({NotDpc(), Dpc("/p/d.pc/A.dll")})},
      {"both are DPC", "/usr/d.pc/A.dll", "/p/d.pc/A.dll", Dpc("/usr/d.pc/A.dll")},
  };
  for (const PairRow& row : rows) {
    Platform& platform = doubles::Reset();
    EXPECT_EQ("", StandardErrorOf([&] { EXPECT_FALSE(isDuplicatedDll(row.origin, row.duplicated)) << row.what; }));
    EXPECT_TRUE(Holds(platform, {Compared(row.origin, row.duplicated, row.inside)})) << row.what;
  }
}

TEST(Duplicates, any_other_pair_is_a_duplicate_told_in_the_log_and_on_standard_error) {
  const std::pair<std::string, std::string> pairs[] = {
      {kOrigin, "/p/A.dll"}, {"/p/A.dll", "/p//A.dll"}, {"/p/A.dll", "/p/A.DLL"}, {"/%s%n/A.dll", "/p/%d.dll"}};
  for (const auto& [origin, duplicated] : pairs) {
    Platform& platform = doubles::Reset();
    EXPECT_EQ(DuplicateLine(origin, duplicated),
              StandardErrorOf([&, o = origin, d = duplicated] { EXPECT_TRUE(isDuplicatedDll(o, d)); }));
    const Source source = Plugin("isDuplicatedDll");
    EXPECT_TRUE(Holds(platform, {Compared(origin, duplicated,
                                          Join({NotDpc(), NotDpc(), source.Error("### Duplicated DLL found ###"),
                                                source.Error("Origin : %s", origin),
                                                source.Error("Duplicated : %s", duplicated)}))}));
  }
}

TEST(Duplicates, a_duplicate_is_replaced_by_an_information_file) {
  const TempDir package;
  const std::string dll = package / "bin/Foo.dll";
  WriteFile(dll, "MZ");
  Platform& platform = doubles::Reset();
  EXPECT_EQ("", StandardErrorOf([&] { removeFileAndLeaveInformationFile(kOrigin, dll); }));
  EXPECT_FALSE(IsThere(dll));
  EXPECT_EQ(InformationText(kOrigin, dll), ReadFile(dll + "_deleted"));
  EXPECT_EQ((std::vector<std::string>{"Foo.dll_deleted"}), support::NamesIn(package / "bin"));
  EXPECT_TRUE(Holds(platform, {RemovalFrame(Call("ovplatform_getenv(27)"))}));
}

TEST(Duplicates, a_second_removal_rewrites_the_information_file) {
  const TempDir package;
  const std::string dll = package / "A.dll";
  WriteFile(dll);
  WriteFile(dll + "_deleted", std::string(1000, 'x'));
  const ino_t file = support::InodeOf(dll + "_deleted");
  Platform& platform = doubles::Reset();
  for (int i = 0; i < 2; ++i) {
    platform.journal.clear();
    removeFileAndLeaveInformationFile(kOrigin, dll);
    EXPECT_FALSE(IsThere(dll));
    EXPECT_EQ(InformationText(kOrigin, dll), ReadFile(dll + "_deleted"));
    EXPECT_EQ(file, support::InodeOf(dll + "_deleted"));
    EXPECT_TRUE(Holds(platform, {RemovalFrame()}));
  }
}

TEST(Duplicates, a_link_that_cannot_be_removed_is_not_followed_either) {
  const TempDir package;
  const TempDir elsewhere;
  const std::string dll = package / "closed/A.dll";
  WriteFile(dll, "MZ");
  WriteFile(elsewhere / "victim", "untouched");
  fs::create_symlink(elsewhere / "victim", dll + "_deleted");
  fs::permissions(elsewhere / "victim", fs::perms::all);
  for (const fs::path& open : {package.path(), elsewhere.path()}) fs::permissions(open, fs::perms::all);
  fs::permissions(package / "closed", fs::perms(0555));
  support::InFreshProcess([&] {
    ASSERT_TRUE(support::GiveUpPrivileges());
    ASSERT_EQ("untouched", ReadFile(dll + "_deleted"));
    doubles::Reset();
    removeFileAndLeaveInformationFile(kOrigin, dll);
  });
  EXPECT_TRUE(fs::is_symlink(dll + "_deleted"));
  EXPECT_EQ("untouched", ReadFile(elsewhere / "victim"));
  fs::permissions(package / "closed", fs::perms::owner_all);
}

TEST(Duplicates, nothing_is_removed_when_the_origin_path_contains_the_read_write_root) {
  const char* origins[] = {"/opt/usr/globalapps/x/A.dll", "/mnt/opt/usr/globalapps/A.dll",
                           "/opt/usr/globalappsx/A.dll"};
  for (const char* origin : origins) {
    const TempDir package;
    const std::string dll = package / "A.dll";
    WriteFile(dll, "MZ");
    Platform& platform = doubles::Reset();
    EXPECT_EQ("### INSTALL : morvath, org file is in rw \n",
              StandardErrorOf([&] { removeFileAndLeaveInformationFile(origin, dll); }));
    EXPECT_EQ((std::vector<std::string>{"A.dll"}), support::NamesIn(package.path()));
    EXPECT_TRUE(
        Holds(platform, {RemovalFrame(Plugin("removeFileAndLeaveInformationFile")
                                          .Error("Origin file is in RW area. so doesn't remove duplicate file"))}));
  }
}

struct AreaRow {
  const char* what;
  std::optional<std::string> read_write_root;
  std::string origin;
  bool removed;
};

TEST(Duplicates, the_read_write_root_is_the_one_that_the_platform_names_and_only_the_origins_place_counts) {
  const AreaRow rows[] = {{"the usual one", "/opt/usr/globalapps", kOrigin, true},
                          {"another one", "/data/apps", "/opt/usr/globalapps/x/A.dll", true},
                          {"an origin in that", "/data/apps", "/data/apps/x/A.dll", false},
                          {"none is named", std::nullopt, kOrigin, false}};
  for (const AreaRow& row : rows) {
    const TempDir package;
    const std::string dll = package / "opt/usr/globalapps/A.dll";
    WriteFile(dll);
    doubles::Reset().read_write_root = row.read_write_root;
    StandardErrorOf([&] { removeFileAndLeaveInformationFile(row.origin, dll); });
    EXPECT_EQ(!row.removed, IsThere(dll)) << row.what;
  }
}

}  // namespace
}  // namespace unit
