// What strangers put in the places of files and directories: second names, links, pipes, devices.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "morvath/platform_utils.h"
#include "plugin/duplicates.h"
#include "tests/doubles/platform.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/removal_texts.h"
#include "util/unique_fd.h"

namespace {

namespace fs = std::filesystem;

using support::ReadFile;
using support::TempDir;
using support::WriteFile;

constexpr const char* kOrigin = "/usr/share/dotnet.orvel/framework/A.dll";

TEST(TakenPlaces, another_name_of_a_file_is_taken_from_the_information_file_and_the_file_kept) {
  const TempDir package;
  const std::string dll = package / "A.dll";
  WriteFile(package / "precious", "mine");
  fs::create_hard_link(package / "precious", dll + "_deleted");
  doubles::Reset();
  removeFileAndLeaveInformationFile(kOrigin, dll);
  EXPECT_EQ("mine", ReadFile(package / "precious"));
  EXPECT_EQ(support::InformationText(kOrigin, dll), ReadFile(dll + "_deleted"));
}

TEST(TakenPlaces, a_pipe_in_the_information_files_place_stays_and_whoever_listens_hears_nothing) {
  support::InFreshProcess([] {
    const TempDir package;
    const std::string pipe = package / "A.dll_deleted";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    const UniqueFd listener(open(pipe.c_str(), O_RDONLY | O_NONBLOCK));
    doubles::Reset();
    removeFileAndLeaveInformationFile(kOrigin, package / "A.dll");
    char byte = 0;
    EXPECT_EQ(0, read(listener.get(), &byte, 1));
    EXPECT_TRUE(fs::is_fifo(pipe));
  });
}

TEST(TakenPlaces, a_pipe_in_the_information_files_place_stays_when_nobody_listens) {
  const TempDir package;
  const std::string pipe = package / "A.dll_deleted";
  ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
  doubles::Reset();
  removeFileAndLeaveInformationFile(kOrigin, package / "A.dll");
  EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST(TakenPlaces, without_an_information_file_its_text_goes_nowhere) {
  support::InFreshProcess([] {
    const TempDir package;
    WriteFile(package / "input");
    ASSERT_EQ(STDIN_FILENO, dup2(open((package / "input").c_str(), O_RDWR | O_CLOEXEC), STDIN_FILENO));
    fs::create_directory(package / "A.dll_deleted");
    ASSERT_EQ(0, mkfifo((package / "B.dll_deleted").c_str(), 0600));
    const UniqueFd listener(open((package / "B.dll_deleted").c_str(), O_RDONLY | O_NONBLOCK));
    doubles::Reset();
    removeFileAndLeaveInformationFile(kOrigin, package / "A.dll");
    removeFileAndLeaveInformationFile(kOrigin, package / "B.dll");
    EXPECT_NE(-1, fcntl(STDIN_FILENO, F_GETFD));
    EXPECT_EQ("", ReadFile(package / "input"));
  });
}

TEST(TakenPlaces, an_information_file_may_be_opened_in_the_place_of_closed_standard_input) {
  support::InFreshProcess([] {
    const TempDir package;
    close(STDIN_FILENO);
    doubles::Reset();
    removeFileAndLeaveInformationFile(kOrigin, package / "A.dll");
    EXPECT_EQ(support::InformationText(kOrigin, package / "A.dll"), ReadFile(package / "A.dll_deleted"));
  });
}

TEST(TakenPlaces, an_earlier_information_file_is_written_anew_and_stays_the_same_file) {
  const TempDir package;
  const std::string information = package / "A.dll_deleted";
  WriteFile(information, std::string(1000, 'x'));
  struct stat before;
  ASSERT_EQ(0, stat(information.c_str(), &before));
  doubles::Reset();
  removeFileAndLeaveInformationFile(kOrigin, package / "A.dll");
  struct stat after;
  ASSERT_EQ(0, stat(information.c_str(), &after));
  EXPECT_EQ(before.st_ino, after.st_ino);
  EXPECT_EQ(support::InformationText(kOrigin, package / "A.dll"), ReadFile(information));
}

TEST(TakenPlaces, another_name_of_a_file_is_taken_from_the_temporary_file_and_the_file_kept) {
  const TempDir root;
  WriteFile(root / "precious", "mine");
  fs::create_hard_link(root / "precious", root / "temp_TPA.txt");
  doubles::Reset();
  writeStringToFile(root.path().string() + "/", "TPA.txt", "abc");
  EXPECT_EQ("mine", ReadFile(root / "precious"));
  EXPECT_EQ("abc", ReadFile(root / "TPA.txt"));
}

TEST(TakenPlaces, a_pipe_in_the_temporary_files_place_never_becomes_the_file) {
  support::InFreshProcess([] {
    const TempDir root;
    const std::string pipe = root / "temp_TPA.txt";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    const UniqueFd listener(open(pipe.c_str(), O_RDONLY | O_NONBLOCK));
    doubles::Reset();
    writeStringToFile(root.path().string() + "/", "TPA.txt", "abc");
    ASSERT_TRUE(fs::is_regular_file(root / "TPA.txt"));
    EXPECT_EQ("abc", ReadFile(root / "TPA.txt"));
  });
}

TEST(TakenPlaces, what_an_earlier_write_left_in_the_temporary_files_place_is_used_again) {
  const TempDir root;
  WriteFile(root / "temp_TPA.txt", std::string(1000, 'x'));
  struct stat before;
  ASSERT_EQ(0, stat((root / "temp_TPA.txt").c_str(), &before));
  doubles::Reset();
  writeStringToFile(root.path().string() + "/", "TPA.txt", "abc");
  struct stat after;
  ASSERT_EQ(0, stat((root / "TPA.txt").c_str(), &after));
  EXPECT_EQ(before.st_ino, after.st_ino);
  EXPECT_EQ("abc", ReadFile(root / "TPA.txt"));
}

TEST(TakenPlaces, an_endless_device_reads_as_empty) { EXPECT_EQ("", readFileToString("/dev/zero")); }

TEST(TakenPlaces, a_directory_that_vanishes_during_the_walk_is_passed_over) {
  const TempDir root;
  for (const std::string& file : {root / "first", root / "sub/inside"}) WriteFile(file);
  std::vector<std::string> seen;
  const auto remove = [&](const std::string&, const std::string& name) {
    seen.push_back(name);
    fs::remove_all(root / "sub");
  };
  scanFilesInDirExcludeSymlink(root.path().string(), remove, 10);
  EXPECT_EQ((std::vector<std::string>{"first"}), seen);
}

}  // namespace
