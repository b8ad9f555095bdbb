// writeStringToFile and readFileToString.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>

#include "morvath/platform_utils.h"
#include "tests/support/child.h"
#include "tests/support/expected_lines.h"
#include "tests/support/files.h"
#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"
#include "tests/unit/interposed_files.h"

namespace {

namespace fs = std::filesystem;

using doubles::Call;
using doubles::Platform;
using doubles::Source;
using doubles::Steps;
using expected::NotThereYet;
using support::IsThere;
using support::ReadFile;
using support::TempDir;
using support::WriteFile;

const Source kWrite("platform_utils", "writeStringToFile");
const Source kIsRealPath("platform_utils", "isRealPath");

constexpr std::uintmax_t kLargestSize = 128 << 20;

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
    support::LeaveNoRoomInFiles();
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
  const ino_t left_behind = support::InodeOf(file.temporary);
  Platform& platform = doubles::Reset();
  file.Write("abc");
  EXPECT_TRUE(Holds(platform, {NotThereYet(), file.SaveFile(), kWrite.At(177).Debug("Saved")}));
  EXPECT_EQ("abc", ReadFile(file.target));
  EXPECT_EQ(left_behind, support::InodeOf(file.target));
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

struct ContentRow {
  std::string content;
  std::string written;
};

TEST(DurableWrite, the_content_is_written_up_to_its_first_nul_and_nothing_is_added) {
  const ContentRow rows[] = {{"", ""},
                             {"a\n", "a\n"},
                             {"a\r\nb", "a\r\nb"},
                             {"%s%n%d", "%s%n%d"},
                             {"\xFF\xFE\x01", "\xFF\xFE\x01"},
                             {std::string("ab\0cd", 5), "ab"},
                             {std::string("\0ab", 3), ""},
                             {std::string(1 << 20, 'x'), std::string(1 << 20, 'x')}};
  for (const ContentRow& row : rows) {
    const Target file;
    Platform& platform = doubles::Reset();
    file.Write(row.content);
    EXPECT_EQ(row.written, ReadFile(file.target));
    EXPECT_EQ((std::vector<std::string>{"fsync(" + std::to_string(row.written.size()) + ")"}), platform.Calls("fsync"));
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
  const Target file;
  WriteFile(file.root / "precious", "mine");
  WriteFile(file.target, "old");
  fs::create_symlink("precious", file.temporary);
  Platform& platform = doubles::Reset();
  file.Write("abc");
  EXPECT_TRUE(Holds(platform, {kIsRealPath.Error("Symbolic link is detected : %s", file.temporary)}));
  EXPECT_TRUE(platform.Calls("").empty());
  EXPECT_EQ("mine", ReadFile(file.root / "precious"));
  EXPECT_EQ("old", ReadFile(file.target));
  EXPECT_TRUE(fs::is_symlink(file.temporary));
}

TEST(DurableWrite, links_in_both_places_are_one_error_line) {
  const Target file;
  fs::create_symlink("a", file.temporary);
  fs::create_symlink("b", file.target);
  Platform& platform = doubles::Reset();
  file.Write("abc");
  EXPECT_TRUE(Holds(platform, {kIsRealPath.Error("Symbolic link is detected : %s", file.temporary)}));
}

TEST(DurableWrite, a_target_without_a_name_is_refused) {
  Fresh([](Platform& platform) {
    const TempDir root;
    fs::current_path(root.path());
    writeStringToFile("", "", "abc");
    EXPECT_TRUE(Holds(platform, {NotThereYet(), kIsRealPath.Error("Path is empty")}));
    EXPECT_TRUE(support::NamesIn(root.path()).empty());
  });
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
  EXPECT_TRUE(Holds(
      platform, {NotThereYet(), NotThereYet(),
                 kWrite.At(163).Error("Fail to write string to file - open error(%s)", "No such file or directory")}));
  EXPECT_TRUE(platform.Calls("").empty());
  EXPECT_TRUE(support::NamesIn(root.path()).empty());
}

TEST(DurableWrite, an_open_error_leaves_the_target_as_it_was) {
  const Target file;
  WriteFile(file.target, "old");
  fs::create_directory(file.temporary);
  Platform& platform = doubles::Reset();
  file.Write("abc");
  EXPECT_TRUE(Holds(platform, {file.OpenError("Is a directory")}));
  EXPECT_TRUE(platform.Calls("").empty());
  EXPECT_EQ("old", ReadFile(file.target));
}

TEST(DurableWrite, a_failed_rename_is_not_logged_and_is_followed_by_the_sync) {
  const Target file;
  WriteFile(file.target, "old");
  Platform& platform = doubles::Reset();
  interposed::Now().rename_error = EXDEV;
  file.Write("abc");
  interposed::Now().rename_error.reset();
  EXPECT_TRUE(Holds(platform, {NotThereYet(), Call("fsync(3)"), file.SaveFile(), file.Renamed(), Call("sync()")}));
  EXPECT_EQ("old", ReadFile(file.target));
  EXPECT_EQ("abc", ReadFile(file.temporary));
}

TEST(DurableWrite, the_write_after_a_failed_rename_succeeds) {
  const Target file;
  doubles::Reset();
  interposed::Now().rename_error = EIO;
  file.Write("a long first content");
  interposed::Now().rename_error.reset();
  file.Write("abc");
  EXPECT_EQ("abc", ReadFile(file.target));
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
  const std::size_t before = support::NamesIn("/proc/self/fd").size();
  file.Write("abc");
  EXPECT_EQ(before, support::NamesIn("/proc/self/fd").size());
}

TEST(DurableRead, the_content_is_read_byte_by_byte) {
  const std::string contents[] = {
      "", "abc", "a\nb\n\n", "\r\n", " \t a ", std::string("a\0b\0", 4), "\xFF\x1A", std::string((1 << 20) + 7, 'x')};
  for (const std::string& content : contents) {
    const TempDir root;
    WriteFile(root / "file", content);
    Platform& platform = doubles::Reset();
    EXPECT_EQ(content, readFileToString(root / "file"));
    EXPECT_TRUE(Holds(platform, Steps{}));
  }
}

TEST(DurableRead, a_link_is_followed) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  fs::create_symlink("file", root / "link");
  EXPECT_EQ("abc", readFileToString(root / "link"));
}

TEST(DurableRead, what_cannot_be_read_is_empty_without_a_line) {
  const TempDir root;
  Platform& platform = doubles::Reset();
  EXPECT_EQ("", readFileToString(root / "missing"));
  EXPECT_EQ("", readFileToString(root.path().string()));
  EXPECT_EQ("", readFileToString(""));
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(DurableRead, a_pipe_is_empty_and_not_waited_for) {
  support::InFreshProcess([] {
    const TempDir root;
    ASSERT_EQ(0, mkfifo((root / "pipe").c_str(), 0600));
    alarm(20);
    EXPECT_EQ("", readFileToString(root / "pipe"));
  });
}

TEST(DurableRead, a_file_that_may_not_be_read_is_empty) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  fs::permissions(root / "file", fs::perms::none);
  support::InFreshProcess([&] {
    ASSERT_TRUE(support::GiveUpPrivileges());
    EXPECT_EQ("", readFileToString(root / "file"));
  });
}

TEST(DurableRead, a_file_of_the_largest_size_is_read) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  fs::resize_file(root / "file", kLargestSize);
  EXPECT_EQ(kLargestSize, readFileToString(root / "file").size());
}

TEST(DurableRead, a_file_that_claims_more_than_the_largest_size_is_empty) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  for (const std::uintmax_t size : {kLargestSize + 1, std::uintmax_t{1} << 40}) {
    fs::resize_file(root / "file", size);
    EXPECT_TRUE(readFileToString(root / "file").empty()) << size;
  }
}

TEST(DurableRead, the_open_file_is_neither_inherited_nor_made_the_terminal) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  readFileToString(root / "file");
  EXPECT_NE(0, interposed::Files().open_flags & O_CLOEXEC);
  EXPECT_NE(0, interposed::Files().open_flags & O_NOCTTY);
}

TEST(DurableRead, no_file_stays_open) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  const std::size_t before = support::NamesIn("/proc/self/fd").size();
  readFileToString(root / "file");
  readFileToString(root / "missing");
  EXPECT_EQ(before, support::NamesIn("/proc/self/fd").size());
}

TEST(DurableRead, the_descriptor_of_a_closed_standard_input_is_as_good_as_any) {
  support::InFreshProcess([] {
    const TempDir root;
    WriteFile(root / "file", "abc");
    close(STDIN_FILENO);
    const std::size_t before = support::NamesIn("/proc/self/fd").size();
    EXPECT_EQ("abc", readFileToString(root / "file"));
    EXPECT_EQ(before, support::NamesIn("/proc/self/fd").size());
  });
}

}  // namespace
