// What strangers put in the places of files and directories: second names, links, pipes, devices.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "morvath/platform_utils.h"
#include "plugin/assembly_cache.h"
#include "plugin/catalogues.h"
#include "plugin/duplicates.h"
#include "tests/support/child.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/removal_texts.h"
#include "tests/unit/unit_case.h"
#include "util/unique_fd.h"

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

TEST(TakenPlaces, an_endless_device_reads_as_empty) { EXPECT_EQ("", readFileToString("/dev/zero")); }

TEST(TakenPlaces, a_directory_that_becomes_a_link_during_the_walk_is_not_walked) {
  const TempDir root;
  const TempDir elsewhere;
  for (const std::string& file : {root / "first", root / "sub/inside", elsewhere / "inside"}) WriteFile(file);
  std::vector<std::string> seen;
  const auto exchange = [&](const std::string&, const std::string& name) {
    seen.push_back(name);
    if (name != "first") return;
    fs::rename(root / "sub", root / "moved");
    fs::create_directory_symlink(elsewhere.path(), root / "sub");
  };
  scanFilesInDirExcludeSymlink(root.path().string(), exchange, 10);
  EXPECT_EQ((std::vector<std::string>{"first"}), seen);
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

TEST(TakenPlaces, a_package_whose_root_is_a_link_is_left_alone_with_an_error_line) {
  FreshOnDevice([](Platform& platform) {
    const std::string root = "/opt/usr/apps/pkg";
    platform.packages.push_back(doubles::MakePackage("pkg", root));
    support::WriteFiles({std::string(support::kCoreDirectory) + "A.dll", "/opt/usr/apps/other/bin/A.dll",
                         "/opt/usr/apps/other/lib/L.dll"});
    fs::create_directory_symlink("other", root);
    EXPECT_EQ(0, gac("pkg"));
    EXPECT_TRUE(support::IsThere("/opt/usr/apps/other/bin/A.dll"));
    EXPECT_TRUE(appLib.empty());
    const std::vector<std::string> messages = platform.Messages();
    EXPECT_EQ(1, std::count(messages.begin(), messages.end(), "Symbolic link is detected : " + root));
  });
}

}  // namespace
