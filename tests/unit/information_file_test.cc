// The information file: how it is created and written.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <deque>

#include "plugin/duplicates.h"
#include "tests/support/unit_case.h"
#include "tests/unit/interposed_files.h"

namespace unit {
namespace {

constexpr const char* kOrigin = "/usr/share/dotnet.orvel/framework/A.dll";

TEST(Duplicates, the_information_file_has_the_default_permissions_of_the_process) {
  support::InFreshProcess([] {
    const TempDir package;
    doubles::Reset();
    umask(0027);
    removeFileAndLeaveInformationFile(kOrigin, package / "A.dll");
    EXPECT_EQ(fs::perms(0640), fs::status(package / "A.dll_deleted").permissions());
  });
}

TEST(Duplicates, paths_go_into_the_information_file_as_they_are) {
  const TempDir package;
  doubles::Reset();
  const std::string dll = package.path().string() + "//./A b%s\".dll";
  WriteFile(dll);
  removeFileAndLeaveInformationFile("../x //y", dll);
  EXPECT_EQ(InformationText("../x //y", dll), ReadFile(package / "A b%s\".dll_deleted"));
}

TEST(Duplicates, without_an_information_file_its_text_goes_nowhere) {
  support::InFreshProcess([] {
    const TempDir package;
    WriteFile(package / "input");
    ASSERT_EQ(STDIN_FILENO, dup2(open((package / "input").c_str(), O_RDWR | O_CLOEXEC), STDIN_FILENO));
    fs::create_directory(package / "A.dll_deleted");
    doubles::Reset();
    removeFileAndLeaveInformationFile(kOrigin, package / "A.dll");
    EXPECT_TRUE(doubles::Current().misuses.empty());
    EXPECT_NE(-1, fcntl(STDIN_FILENO, F_GETFD));
    EXPECT_EQ("", ReadFile(package / "input"));
  });
}

TEST(Duplicates, the_open_information_file_is_neither_inherited_nor_made_the_terminal) {
  const TempDir package;
  doubles::Reset();
  interposed::Files().common_open_flags = ~0;
  removeFileAndLeaveInformationFile(kOrigin, package / "A.dll");
  EXPECT_NE(0, interposed::Files().common_open_flags & O_CLOEXEC);
  EXPECT_NE(0, interposed::Files().common_open_flags & O_NOCTTY);
}

FRESH_TEST(Duplicates, the_descriptor_of_a_closed_standard_input_is_as_good_as_any) {
  const TempDir package;
  const std::string dll = package / "A.dll";
  WriteFile(dll, "MZ");
  close(STDIN_FILENO);
  for (const bool is_there : {false, true}) {
    if (is_there) WriteFile(dll + "_deleted", "of an earlier removal");
    const std::size_t before = support::OpenDescriptors();
    errno = ELOOP;  // as an earlier failure leaves it
    removeFileAndLeaveInformationFile(kOrigin, dll);
    EXPECT_EQ(InformationText(kOrigin, dll), ReadFile(dll + "_deleted")) << is_there;
    EXPECT_EQ(before, support::OpenDescriptors()) << is_there;
  }
}

TEST(Duplicates, the_information_file_is_left_although_the_removal_failed) {
  const TempDir package;
  const std::string dll = package / "A.dll";
  WriteFile(dll + "/inside");  // a directory, which removeFile does not delete
  doubles::Reset();
  removeFileAndLeaveInformationFile(kOrigin, dll);
  EXPECT_TRUE(IsThere(dll + "/inside"));
  EXPECT_EQ(InformationText(kOrigin, dll), ReadFile(dll + "_deleted"));
}

TEST(Duplicates, an_information_file_that_cannot_be_made_is_no_matter_and_nothing_is_written) {
  support::InFreshProcess([] {
    Platform& platform = doubles::Reset();
    interposed::Files().writes = {interposed::Fails(EIO)};
    EXPECT_EQ("", StandardErrorOf([] { removeFileAndLeaveInformationFile(kOrigin, "/proc/nowhere/A.dll"); }));
    EXPECT_TRUE(Holds(platform, {RemovalFrame()}));
    EXPECT_EQ(1u, interposed::Files().writes.size());
  });
}

TEST(Duplicates, a_disk_without_room_leaves_an_empty_information_file_silently) {
  const TempDir package;
  const std::string dll = package / "A.dll";
  WriteFile(dll, "MZ");
  support::InFreshProcess([&] {
    support::MakeFileWritesFail();
    Platform& platform = doubles::Reset();
    removeFileAndLeaveInformationFile(kOrigin, dll);
    EXPECT_TRUE(Holds(platform, {RemovalFrame()}));
  });
  EXPECT_FALSE(IsThere(dll));
  EXPECT_EQ("", ReadFile(dll + "_deleted"));
}

using interposed::Fails;
using interposed::WritesAtMost;

struct WriteRow {
  const char* what;
  std::deque<interposed::WriteStep> steps;
  std::size_t written;  // how much of the text is written
};

// The text of the information file after writes as in `row`.
void ExpectWritten(const WriteRow& row) {
  Fresh([&](Platform& platform) {
    const TempDir package;
    const std::string dll = package / "A.dll";
    interposed::Files().writes = row.steps;
    removeFileAndLeaveInformationFile(kOrigin, dll);
    EXPECT_TRUE(interposed::Files().writes.empty()) << row.what;
    EXPECT_EQ(InformationText(kOrigin, dll).substr(0, row.written), ReadFile(dll + "_deleted")) << row.what;
    EXPECT_TRUE(Holds(platform, {RemovalFrame()})) << row.what;
  });
}

constexpr std::size_t kAll = std::string::npos;

TEST(Duplicates, short_writes_of_the_information_file_are_continued) {
  const WriteRow rows[] = {{"one byte at first", {WritesAtMost(1)}, kAll},
                           {"several", {WritesAtMost(5), WritesAtMost(1), WritesAtMost(7)}, kAll}};
  for (const WriteRow& row : rows) ExpectWritten(row);
}

TEST(Duplicates, interrupted_writes_of_the_information_file_are_repeated) {
  const WriteRow rows[] = {{"once", {Fails(EINTR)}, kAll},
                           {"twice", {Fails(EINTR), Fails(EINTR)}, kAll},
                           {"among short ones", {WritesAtMost(3), Fails(EINTR), WritesAtMost(4), Fails(EINTR)}, kAll}};
  for (const WriteRow& row : rows) ExpectWritten(row);
}

TEST(Duplicates, a_write_that_fails_ends_the_information_file_quietly) {
  const WriteRow rows[] = {{"at once", {Fails(ENOSPC)}, 0},
                           {"later", {WritesAtMost(10), Fails(EIO)}, 10},
                           {"after an interruption", {WritesAtMost(7), Fails(EINTR), Fails(EIO)}, 7}};
  for (const WriteRow& row : rows) ExpectWritten(row);
}

TEST(Duplicates, a_write_that_takes_nothing_ends_the_information_file_quietly) {
  const WriteRow rows[] = {{"at once", {WritesAtMost(0)}, 0},
                           {"after an interruption", {WritesAtMost(4), Fails(EINTR), WritesAtMost(0)}, 4}};
  for (const WriteRow& row : rows) ExpectWritten(row);
}

}  // namespace
}  // namespace unit
