// What strangers put in the places of files and directories: second names, links, pipes, devices.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/unique_fd.h"
#include "morvath/platform_utils.h"
#include "plugin/assembly_cache.h"
#include "plugin/catalogues.h"
#include "plugin/duplicates.h"
#include "tests/support/child.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/removal_texts.h"
#include "tests/unit/unit_case.h"
#include "util/platform_utils/directory_walk.h"

namespace {

namespace fs = std::filesystem;

using doubles::Platform;
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
    EXPECT_TRUE(doubles::Current().misuses.empty());
    EXPECT_NE(-1, fcntl(STDIN_FILENO, F_GETFD));
    EXPECT_EQ("", ReadFile(package / "input"));
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

// What a walk of the package leaves of A.dll in a directory with whose place `change` deals before the walk gets there.
bool IsKeptWhen(const std::function<void(const TempDir& package, const std::string& elsewhere)>& change) {
  const TempDir package;
  const TempDir elsewhere;
  for (const std::string& file : {package / "first.dll", package / "a/b/A.dll", elsewhere / "b/A.dll"}) WriteFile(file);
  coreFX = {{"A.dll", "/usr/share/dotnet.orvel/netcoreapp/A.dll"}};
  const PackageJudge judge(package.path().string());
  const auto visit = [&](const ListedFile& file) {
    if (file.name() == "first.dll") change(package, elsewhere.path().string());
    judge.Judge(file);
  };
  WalkFiles(package.path().string(), visit, 10);
  return support::IsThere(package / "a/b/A.dll");
}

TEST(TakenPlaces, what_a_link_leads_to_that_took_a_directorys_place_during_the_walk_is_kept) {
  support::InFreshProcess([] {
    doubles::Reset();
    EXPECT_FALSE(IsKeptWhen([](const TempDir&, const std::string&) {}));
    EXPECT_TRUE(IsKeptWhen([](const TempDir& package, const std::string& elsewhere) {
      fs::rename(package / "a", package / "moved");
      fs::create_directory_symlink(elsewhere, package / "a");
    }));
    EXPECT_TRUE(IsKeptWhen([](const TempDir& package, const std::string& elsewhere) {
      fs::rename(package / "a/b", package / "a/moved");
      fs::create_directory_symlink(elsewhere + "/b", package / "a/b");
    }));
  });
}

TEST(TakenPlaces, a_link_above_the_packages_root_protects_nothing) {
  support::InFreshProcess([] {
    doubles::Reset();
    const TempDir area;
    WriteFile(area / "apps/pkg/A.dll");
    fs::create_directory_symlink("apps", area / "link");
    coreFX = {{"A.dll", "/usr/share/dotnet.orvel/netcoreapp/A.dll"}};
    const PackageJudge judge(area / "link/pkg");
    std::vector<int> answers;
    WalkFiles(
        area / "link/pkg", [&](const ListedFile& file) { answers.push_back(judge.Judge(file)); }, 10);
    EXPECT_EQ(std::vector<int>{0}, answers);
    EXPECT_FALSE(support::IsThere(area / "apps/pkg/A.dll"));
  });
}

TEST(TakenPlaces, what_is_kept_because_of_a_link_is_answered_like_what_is_unique) {
  support::InFreshProcess([] {
    doubles::Reset();
    const TempDir area;
    WriteFile(area / "pkg/A.dll");
    fs::create_directory_symlink("pkg", area / "root");
    coreFX = {{"A.dll", "/usr/share/dotnet.orvel/netcoreapp/A.dll"}};
    const PackageJudge judge(area / "root");
    std::vector<int> answers;
    WalkFiles(
        area / "root", [&](const ListedFile& file) { answers.push_back(judge.Judge(file)); }, 10);
    EXPECT_EQ(std::vector<int>{1}, answers);
    EXPECT_TRUE(support::IsThere(area / "pkg/A.dll"));
  });
}

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

TEST(TakenPlaces, what_is_in_a_package_whose_root_is_a_link_is_kept_with_an_error_line) {
  FreshOnDevice([](Platform& platform) {
    const std::string root = "/opt/usr/apps/pkg";
    platform.packages.push_back(doubles::MakePackage("pkg", root));
    support::WriteFiles({std::string(support::kCoreDirectory) + "A.dll", "/opt/usr/apps/other/bin/A.dll",
                         "/opt/usr/apps/other/lib/L.dll"});
    fs::create_directory_symlink("other", root);
    EXPECT_EQ(0, gac("pkg"));
    EXPECT_TRUE(support::IsThere("/opt/usr/apps/other/bin/A.dll"));
    const std::vector<std::string> messages = platform.Messages();
    EXPECT_EQ(1, std::count(messages.begin(), messages.end(), "Symbolic link is detected : " + root));
  });
}

}  // namespace
