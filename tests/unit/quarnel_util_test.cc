// The launcher utility library.
#include "quarnel_util/quarnel_util.h"

#include <cerrno>
#include <cstring>

#include "tests/support/unit_case.h"

namespace unit {
namespace {

TEST(RootPath, the_root_of_an_installed_package_has_no_trailing_slash) {
  for (const char* root : {"/opt/usr/apps/pkg", "/opt/usr/apps/pkg/", "/opt/usr/apps/pkg//"}) {
    Platform& platform = PlatformWith(root);
    EXPECT_EQ("/opt/usr/apps/pkg", getRootPath("pkg"));
    EXPECT_TRUE(Holds(platform, Steps{}));
    EXPECT_TRUE(AllRecordsDestroyed(platform));
  }
}

// The query finds no root, and no record remains.
void ExpectNoRoot(const std::string& what, const std::function<void(Platform&)>& prepare,
                  const std::string& id = "pkg") {
  Platform& platform = PlatformWith("/pkg");
  prepare(platform);
  EXPECT_EQ("", getRootPath(id)) << what;
  EXPECT_TRUE(AllRecordsDestroyed(platform)) << what;
}

TEST(RootPath, an_unknown_package_and_one_without_an_application_have_an_empty_root) {
  for (const char* id : {"unknown", "", "PKG", "pkg2"})
    ExpectNoRoot(
        id, [](Platform&) {}, id);
  ExpectNoRoot("no application", [](Platform& platform) { platform.packages[0].applications.clear(); });
}

TEST(RootPath, whatever_fails_on_the_way_the_root_is_empty_and_no_record_is_left) {
  for (const char* function : {"pkgmgrinfo_pkginfo_get_pkginfo", "pkgmgrinfo_pkginfo_get_mainappid",
                               "pkgmgrinfo_appinfo_get_appinfo", "pkgmgrinfo_appinfo_get_root_path"}) {
    ExpectNoRoot(function, [=](Platform& platform) { platform.FailNext(function, -1); });
  }
  for (const char* function : {"pkgmgrinfo_pkginfo_get_mainappid", "pkgmgrinfo_appinfo_get_root_path"}) {
    ExpectNoRoot(function, [=](Platform& platform) { platform.GiveNullNext(function); });
  }
}

TEST(ConcatPath, there_is_exactly_one_slash_between_the_parts) {
  for (const char* directory : {"/a/b", "/a/b/", "/a/b//"}) {
    EXPECT_EQ("/a/b/c.dll", concatPath(directory, "c.dll"));
  }
  EXPECT_EQ("/a/b", concatPath("/a", "/b"));
  EXPECT_EQ("/a/b", concatPath("/a/", "/b"));
  EXPECT_EQ("/a", concatPath("/", "a"));
  EXPECT_EQ("a/b", concatPath("a", "b"));
  EXPECT_EQ("a", concatPath("", "a"));
  EXPECT_EQ("a", concatPath("a", ""));
  EXPECT_EQ("", concatPath("", ""));
}

TEST(AbsolutePath, an_absolute_path_stays_as_it_is) {
  for (const char* path : {"/", "/a/b/", "/a/../b", "/a//b", "/proc/nowhere/at/all/shared/res/"}) {
    EXPECT_EQ(path, getAbsolutePath(path));
  }
}

TEST(AbsolutePath, a_link_on_the_way_is_not_resolved) {
  const TempDir root;
  WriteFile(root / "real/file");
  fs::create_symlink("real", root / "link");
  EXPECT_EQ(root / "link/file", getAbsolutePath(root / "link/file"));
}

TEST(AbsolutePath, a_relative_path_is_taken_from_the_working_directory) {
  support::InFreshProcess([] {
    const TempDir root;
    fs::current_path(root.path());
    EXPECT_EQ(fs::current_path().string() + "/a/b", getAbsolutePath("a/b"));
    EXPECT_EQ("", getAbsolutePath(""));
  });
}

TEST(SplitPath, a_list_is_split_at_colons_and_appended) {
  const std::pair<const char*, Texts> rows[] = {
      {"", {}},  {"/a", {"/a"}},           {"/a:/b", {"/a", "/b"}}, {":/a::/b:", {"/a", "/b"}},
      {":", {}}, {"/a;/b c", {"/a;/b c"}}, {"/a:/a", {"/a", "/a"}}};
  for (const auto& [list, parts] : rows) {
    Texts out = {"there before"};
    splitPath(list, out);
    Texts expected = {"there before"};
    expected.insert(expected.end(), parts.begin(), parts.end());
    EXPECT_EQ(expected, out) << list;
  }
}

TEST(RemoveFile, a_file_is_deleted_without_a_line) {
  const TempDir root;
  WriteFile(root / "file");
  Platform& platform = doubles::Reset();
  EXPECT_TRUE(removeFile(root / "file"));
  EXPECT_FALSE(IsThere(root / "file"));
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(RemoveFile, a_missing_file_is_no_error) {
  const TempDir root;
  Platform& platform = doubles::Reset();
  EXPECT_TRUE(removeFile(root / "missing"));
  EXPECT_TRUE(removeFile(root / "missing/below"));
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(RemoveFile, a_link_goes_and_what_it_leads_to_stays) {
  const TempDir root;
  WriteFile(root / "file", "mine");
  fs::create_symlink("file", root / "link");
  doubles::Reset();
  EXPECT_TRUE(removeFile(root / "link"));
  EXPECT_EQ((Texts{"file"}), support::NamesIn(root.path()));
}

TEST(RemoveFile, what_cannot_be_deleted_is_logged_and_stays) {
  const TempDir root;
  fs::create_directory(root / "directory");
  WriteFile(root / "file");
  Platform& platform = doubles::Reset();
  EXPECT_FALSE(removeFile(root / "directory"));
  EXPECT_FALSE(removeFile(root / "file/below"));
  const Source source("quarnel_util", "removeFile");
  EXPECT_TRUE(Holds(platform, {source.Error("Failed to remove %s : %s", root / "directory", std::strerror(EISDIR)),
                               source.Error("Failed to remove %s : %s", root / "file/below", std::strerror(ENOTDIR))}));
  EXPECT_TRUE(IsThere(root / "directory"));
  EXPECT_TRUE(IsThere(root / "file"));
}

std::string AssembliesOf(const Texts& directories, std::string out = "") {
  addAssembliesFromDirectories(directories, out);
  return out;
}

TEST(Assemblies, the_dlls_of_a_directory_are_listed_by_byte) {
  const TempDir root;
  for (const char* name : {"b.dll", "B.dll", "a.ni.dll", "a.dll", "\xC3\xA4.dll", "Z.dll", "a b.dll"}) {
    WriteFile(root / name);
  }
  for (const char* name : {"a.DLL", "a.exe", "a.dll.bak", "dll", "adll", "sub/deep.dll"}) WriteFile(root / name);
  const std::string directory = root.path().string();
  const std::string expected = directory + "/B.dll:" + directory + "/Z.dll:" + directory + "/a b.dll:" + directory +
                               "/a.dll:" + directory + "/a.ni.dll:" + directory + "/b.dll:" + directory +
                               "/\xC3\xA4.dll";
  EXPECT_EQ(expected, AssembliesOf({directory}));
  EXPECT_EQ(expected, AssembliesOf({directory + "/"})) << "one slash, whether or not the directory ends in one";
}

TEST(Assemblies, directories_are_listed_in_their_order_and_appended) {
  const TempDir root;
  WriteFile(root / "z/A.dll");
  WriteFile(root / "a/B.dll");
  EXPECT_EQ((root / "z/A.dll") + ":" + (root / "a/B.dll"), AssembliesOf({root / "z", root / "missing", root / "a"}));
  EXPECT_EQ("/x.dll:" + (root / "z/A.dll"), AssembliesOf({root / "z"}, "/x.dll"));
}

TEST(Assemblies, without_assemblies_the_list_stays_as_it_was) {
  const TempDir root;
  WriteFile(root / "notes.txt");
  fs::create_directory(root / "directory.dll");
  Platform& platform = doubles::Reset();
  EXPECT_EQ("", AssembliesOf({root.path().string(), root / "missing", root / "notes.txt"}));
  EXPECT_EQ("/x.dll", AssembliesOf({root / "missing"}, "/x.dll"));
  EXPECT_EQ("", AssembliesOf({}));
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(Assemblies, a_link_to_a_file_is_an_assembly_and_a_dangling_one_is_none) {
  const TempDir root;
  WriteFile(root / "file");
  fs::create_symlink("file", root / "link.dll");
  fs::create_symlink("gone", root / "dangling.dll");
  EXPECT_EQ(root / "link.dll", AssembliesOf({root.path().string()}));
}

}  // namespace
}  // namespace unit
