// writeStringToFile.
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "base/unique_fd.h"
#include "morvath/platform_utils.h"
#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

const Source kWrite("platform_utils", "writeStringToFile");
const Source kIsRealPath("platform_utils", "isRealPath");

// A directory with the paths that a write of "TPA.txt" uses.
struct Target {
  TempDir root;
  std::string directory = root.path().string() + "/";
  std::string target = root / "TPA.txt";
  std::string temporary = root / "temp_TPA.txt";

  void Write(const std::string& content) const { writeStringToFile(directory, "TPA.txt", content); }

  Steps Renamed() const { return Call("rename(" + temporary + ", " + target + ")"); }
  Steps SaveFile() const { return kWrite.At(173).Debug("Save File : %s", target); }
  Steps OpenError(const std::string& reason) const {
    return kWrite.At(163).Error("Fail to write string to file - open error(%s)", reason);
  }
};

TEST(DurableWrite, a_new_file_is_written_synced_renamed_and_synced) {
  const Target file;
  Platform& platform = doubles::Reset();
  file.Write("abc");
  EXPECT_TRUE(Holds(platform, {NotThereYet(), NotThereYet(), Call("fsync(3)"), file.SaveFile(), file.Renamed(),
                               kWrite.At(177).Debug("Saved"), Call("sync()")}));
  EXPECT_EQ("abc", ReadFile(file.target));
  EXPECT_FALSE(IsThere(file.temporary));
}

TEST(DurableWrite, an_existing_file_is_replaced_whole) {
  const Target file;
  WriteFile(file.target, "a much longer content than before\n");
  Platform& platform = doubles::Reset();
  file.Write("abc");
  EXPECT_TRUE(Holds(platform, {NotThereYet(), file.SaveFile(), kWrite.At(177).Debug("Saved")}));
  EXPECT_EQ("abc", ReadFile(file.target));
}

TEST(DurableWrite, what_cannot_be_written_is_not_noticed_and_the_short_file_takes_the_place) {
  const Target file;
  WriteFile(file.target, "before");
  Fresh([&](Platform& platform) {
    support::MakeFileWritesFail();
    file.Write("abc");
    EXPECT_TRUE(Holds(platform, {NotThereYet(), Call("fsync(0)"), file.SaveFile(), file.Renamed(),
                                 kWrite.At(177).Debug("Saved"), Call("sync()")}));
  });
  EXPECT_EQ("", ReadFile(file.target));
  EXPECT_FALSE(IsThere(file.temporary));
}

TEST(DurableWrite, a_temporary_file_that_was_left_behind_is_used_again) {
  const Target file;
  WriteFile(file.temporary, "a much longer content than before\n");
  Platform& platform = doubles::Reset();
  const UniqueFd left(open(file.temporary.c_str(), O_RDONLY | O_CLOEXEC));
  file.Write("abc");
  EXPECT_TRUE(Holds(platform, {NotThereYet(), file.SaveFile(), kWrite.At(177).Debug("Saved")}));
  EXPECT_EQ("abc", ReadFile(file.target));
  struct stat status;
  ASSERT_EQ(0, fstat(left.get(), &status));
  EXPECT_EQ(1U, status.st_nlink) << "it is the file itself";
}

TEST(DurableWrite, a_reader_of_the_old_file_keeps_the_old_content) {
  const Target file;
  WriteFile(file.target, "old");
  fs::create_hard_link(file.target, file.root / "the old one");
  doubles::Reset();
  file.Write("new");
  EXPECT_EQ("new", ReadFile(file.target));
  EXPECT_EQ("old", ReadFile(file.root / "the old one"));
}

TEST(DurableWrite, the_content_is_written_up_to_its_first_nul_and_nothing_is_added) {
  const std::pair<std::string, std::string> rows[] = {{"", ""},
                                                      {"a\n", "a\n"},
                                                      {"a\r\nb", "a\r\nb"},
                                                      {"%s%n%d", "%s%n%d"},
                                                      {"\xFF\xFE\x01", "\xFF\xFE\x01"},
                                                      {std::string("ab\0cd", 5), "ab"},
                                                      {std::string("\0ab", 3), ""},
                                                      {std::string(1 << 20, 'x'), std::string(1 << 20, 'x')}};
  for (const auto& [content, written] : rows) {
    const Target file;
    Platform& platform = doubles::Reset();
    file.Write(content);
    EXPECT_EQ(written, ReadFile(file.target));
    EXPECT_EQ((std::vector<std::string>{"fsync(" + std::to_string(written.size()) + ")"}), platform.Calls("fsync"));
  }
}

TEST(DurableWrite, directory_and_name_are_joined_as_they_stand) {
  const TempDir root;
  fs::create_directories(root / "temp_d");
  doubles::Reset();
  writeStringToFile(root / "d", "f", "abc");
  EXPECT_EQ("abc", ReadFile(root / "df"));
  EXPECT_FALSE(IsThere(root / "d"));
}

TEST(DurableWrite, a_link_in_the_targets_place_is_refused) {
  for (const char* destination : {"precious", "gone"}) {
    const Target file;
    WriteFile(file.root / "precious", "mine");
    fs::create_symlink(destination, file.target);
    Platform& platform = doubles::Reset();
    file.Write("abc");
    EXPECT_TRUE(Holds(platform, {NotThereYet(), kIsRealPath.Error("Symbolic link is detected : %s", file.target)}));
    EXPECT_TRUE(platform.Calls("").empty());
    EXPECT_EQ(destination, fs::read_symlink(file.target).string());
    EXPECT_EQ("mine", ReadFile(file.root / "precious"));
    EXPECT_EQ((std::vector<std::string>{"TPA.txt", "precious"}), support::NamesIn(file.root.path()));
  }
}

TEST(DurableWrite, a_link_in_the_temporary_files_place_is_refused_before_the_target_is_looked_at) {
  for (const bool target_is_link : {false, true}) {
    const Target file;
    WriteFile(file.root / "precious", "mine");
    if (target_is_link) {
      fs::create_symlink("precious", file.target);
    } else {
      WriteFile(file.target, "mine");
    }
    fs::create_symlink("precious", file.temporary);
    Platform& platform = doubles::Reset();
    file.Write("abc");
    EXPECT_TRUE(Holds(platform, {kIsRealPath.Error("Symbolic link is detected : %s", file.temporary)}));
    EXPECT_TRUE(platform.Calls("").empty());
    EXPECT_EQ("mine", ReadFile(file.root / "precious"));
    EXPECT_EQ("mine", ReadFile(file.target));
    EXPECT_EQ(target_is_link, fs::is_symlink(file.target));
    EXPECT_TRUE(fs::is_symlink(file.temporary));
  }
}

FRESH_TEST(DurableWrite, a_target_without_a_name_is_refused) {
  const TempDir root;
  fs::current_path(root.path());
  writeStringToFile("", "", "abc");
  EXPECT_TRUE(Holds(platform, {NotThereYet(), kIsRealPath.Error("Path is empty")}));
  EXPECT_TRUE(support::NamesIn(root.path()).empty());
}

TEST(DurableWrite, a_path_that_cannot_be_examined_is_refused) {
  const TempDir root;
  WriteFile(root / "file");
  Platform& platform = doubles::Reset();
  writeStringToFile(root / "file/", "TPA.txt", "abc");
  EXPECT_TRUE(Holds(platform, {kIsRealPath.Error("lstat error.")}));
}

TEST(DurableWrite, a_missing_directory_is_an_open_error_and_nothing_is_synced) {
  const TempDir root;
  Platform& platform = doubles::Reset();
  writeStringToFile(root / "missing/", "TPA.txt", "abc");
  EXPECT_TRUE(
      Holds(platform, {NotThereYet(), NotThereYet(),
                       kWrite.At(163).Error("Fail to write string to file - open error(%s)", std::strerror(ENOENT))}));
  EXPECT_TRUE(platform.Calls("").empty());
  EXPECT_TRUE(support::NamesIn(root.path()).empty());
}

TEST(DurableWrite, an_open_error_leaves_the_target_as_it_was) {
  const Target file;
  WriteFile(file.target, "old");
  fs::create_directory(file.temporary);
  Platform& platform = doubles::Reset();
  file.Write("abc");
  EXPECT_TRUE(Holds(platform, {file.OpenError(std::strerror(EISDIR))}));
  EXPECT_TRUE(platform.Calls("").empty());
  EXPECT_EQ("old", ReadFile(file.target));
}

TEST(DurableWrite, a_failed_rename_is_not_logged_and_is_followed_by_the_sync_and_the_next_write_succeeds) {
  const Target file;
  WriteFile(file.target, "old");
  Platform& platform = doubles::Reset();
  interposed::Now().rename_error = EXDEV;
  file.Write("abc");
  interposed::Now().rename_error.reset();
  EXPECT_TRUE(Holds(platform, {NotThereYet(), Call("fsync(3)"), file.SaveFile(), file.Renamed(), Call("sync()")}));
  EXPECT_EQ("old", ReadFile(file.target));
  EXPECT_EQ("abc", ReadFile(file.temporary));
  file.Write("a");
  EXPECT_EQ("a", ReadFile(file.target));
  EXPECT_FALSE(IsThere(file.temporary));
}

TEST(DurableWrite, the_file_has_the_default_permissions_of_the_process) {
  support::InFreshProcess([] {
    const Target file;
    WriteFile(file.target, "old");
    fs::permissions(file.target, fs::perms(0600));
    doubles::Reset();
    umask(0027);
    file.Write("abc");
    EXPECT_EQ(fs::perms(0640), fs::status(file.target).permissions());
  });
}

TEST(DurableWrite, no_file_stays_open) {
  const Target file;
  doubles::Reset();
  const std::size_t before = support::OpenDescriptors();
  file.Write("abc");
  EXPECT_EQ(before, support::OpenDescriptors());
}

}  // namespace
}  // namespace unit
