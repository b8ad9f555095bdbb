// What `orvelbox check` takes of the memory, whatever it is given.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <fstream>

#include "tests/support/files.h"
#include "tests/support/zip.h"

extern char** environ;

namespace {

constexpr long kDlls = 49'998;  // as many as an archive may hold beside the manifest and a directory
constexpr long kJobs = 2;
constexpr long kMostKiB = 64 * 1024 + kJobs * kDlls * 64 / 1024;

constexpr const char* kManifest =
    R"(<manifest package="org.example.large" version="1">
 <ui-application appid="org.example.large" exec="App.dll" type="dotnet-inhouse"/></manifest>)";

std::string NameOf(long number) { return "Platform.With.A.Name.Of.Usual.Length" + std::to_string(number) + ".dll"; }

std::string LargeArchive() {
  std::vector<support::ZipEntry> entries = {{"orvel-manifest.xml", kManifest}};
  for (long i = 0; i < kDlls; ++i) entries.push_back({"bin/" + NameOf(i), ""});
  return support::ZipOf(entries);
}

std::string PlatformList() {
  std::string list;
  for (long i = 0; i < kDlls; i += 5) list += "/usr/share/dotnet.orvel/framework/" + NameOf(i) + "\n";
  return list;
}

// The most memory that `orvelbox` with the arguments had, in KiB.
long MemoryOf(std::vector<std::string> arguments) {
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = -1;
  EXPECT_EQ(0, posix_spawn(&child, ORVELBOX_PROGRAM, &actions, nullptr, argv.data(), environ));
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  rusage usage{};
  EXPECT_EQ(child, wait4(child, &status, 0, &usage));
  EXPECT_EQ(1, WEXITSTATUS(status)) << "there are duplicates";
  return usage.ru_maxrss;
}

TEST(CheckMemory, stays_below_its_bound_for_the_largest_archives) {
  const support::TempDir dir;
  std::ofstream(dir / "large.opk") << LargeArchive();
  std::ofstream(dir / "platform") << PlatformList();
  for (const std::string format : {"table", "json", "sarif", "msbuild"}) {
    std::vector<std::string> arguments = {"orvelbox", "check", "--jobs",     std::to_string(kJobs),
                                          "--format", format,  "--platform", dir / "platform"};
    arguments.insert(arguments.end(), 6, dir / "large.opk");
    EXPECT_LE(MemoryOf(arguments), kMostKiB) << format;
  }
}

}  // namespace
