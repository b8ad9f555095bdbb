// The two path predicates: isRealPath and exist.
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "morvath/platform_utils.h"
#include "plugin/duplicates.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

const Source kIsRealPath("platform_utils", "isRealPath");

void ExpectRealPath(bool real, const std::string& path, const Steps& journal) {
  Platform& platform = doubles::Reset();
  EXPECT_EQ(real, isRealPath(path)) << path;
  EXPECT_TRUE(Holds(platform, journal)) << path;
}

TEST(RealPath, an_empty_path_is_refused) { ExpectRealPath(false, "", kIsRealPath.Error("Path is empty")); }

TEST(RealPath, a_path_that_is_not_there_yet_is_accepted) {
  const TempDir root;
  ExpectRealPath(true, root / "missing", NotThereYet());
  ExpectRealPath(true, root / "missing/below", NotThereYet());
}

TEST(RealPath, whatever_is_no_link_is_accepted) {
  const TempDir root;
  WriteFile(root / "file");
  ASSERT_EQ(0, mkfifo((root / "pipe").c_str(), 0600));
  ExpectRealPath(true, root / "file", {});
  ExpectRealPath(true, root / "pipe", {});
  ExpectRealPath(true, root.path().string(), {});
  ExpectRealPath(true, "/dev/null", {});
}

TEST(RealPath, a_link_is_refused_wherever_it_leads) {
  const TempDir root;
  WriteFile(root / "file");
  const std::pair<const char*, const char*> links[] = {
      {"file", "to file"}, {"gone", "dangling"}, {".", "to directory"}, {"loop", "loop"}};
  for (const auto& [target, name] : links) {
    fs::create_symlink(target, root / name);
    ExpectRealPath(false, root / name, kIsRealPath.Error("Symbolic link is detected : %s", root / name));
  }
}

TEST(RealPath, a_link_on_the_way_is_no_matter) {
  const TempDir root;
  WriteFile(root / "real/file");
  fs::create_symlink("real", root / "link");
  ExpectRealPath(true, root / "link/file", {});
}

TEST(RealPath, an_entry_that_cannot_be_examined_is_refused) {
  const TempDir root;
  WriteFile(root / "file");
  fs::create_symlink("loop", root / "loop");
  for (const std::string& path : {root / "file/below", root / "loop/below", root / std::string(300, 'n')}) {
    ExpectRealPath(false, path, kIsRealPath.Error("lstat error."));
  }
}

TEST(RealPath, an_entry_in_a_closed_directory_is_refused) {
  const TempDir root;
  WriteFile(root / "closed/file");
  fs::permissions(root / "closed", fs::perms::none);
  support::InFreshProcess([&] {
    ASSERT_TRUE(support::GiveUpPrivileges());
    ExpectRealPath(false, root / "closed/file", kIsRealPath.Error("lstat error."));
    ExpectRealPath(false, root / "closed/missing", kIsRealPath.Error("lstat error."));
  });
  fs::permissions(root / "closed", fs::perms::owner_all);
}

void ExpectExist(bool exists, const std::string& path, const std::string& reason = "") {
  Platform& platform = doubles::Reset();
  EXPECT_EQ(exists, exist(path)) << path;
  const Steps line = Plugin("exist").Error("Failed to check %s exists : %s", path, reason);
  EXPECT_TRUE(Holds(platform, reason.empty() ? Steps{} : line)) << path;
}

TEST(Exist, what_is_there_exists_without_a_line) {
  const TempDir root;
  WriteFile(root / "file");
  fs::create_symlink("file", root / "link");
  ASSERT_EQ(0, mkfifo((root / "pipe").c_str(), 0600));
  for (const std::string& path : {root / "file", root / "link", root / "pipe", root.path().string()}) {
    ExpectExist(true, path);
  }
}

TEST(Exist, a_missing_path_is_logged_with_the_systems_text) {
  const TempDir root;
  WriteFile(root / "file");
  fs::create_symlink("gone", root / "dangling");
  ExpectExist(false, root / "missing", std::strerror(ENOENT));
  ExpectExist(false, root / "dangling", std::strerror(ENOENT));
  ExpectExist(false, "", std::strerror(ENOENT));
  ExpectExist(false, root / "file/below", std::strerror(ENOTDIR));
}

TEST(Exist, a_path_that_cannot_be_examined_counts_as_missing) {
  const TempDir root;
  fs::create_symlink("loop", root / "loop");
  ExpectExist(false, root / "loop", std::strerror(ELOOP));
}

}  // namespace
}  // namespace unit
