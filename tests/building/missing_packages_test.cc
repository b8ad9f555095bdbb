// Machines without Debian's package tools: nothing is installed, and missing programs and libraries are reported.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "tests/support/command.h"
#include "tests/support/files.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kMake = "make -s -C '" SOURCE_DIRECTORY "' ";

class MissingPackages : public testing::Test {
 protected:
  // The output of the command on a machine without Debian's package tools and the `hidden` programs.
  std::string OutputOf(const std::string& command, std::set<std::string> hidden = {}) const {
    hidden.insert({"apt-get", "dpkg", "dpkg-query"});
    return support::OutputOf("PATH='" + PathWithout(hidden) + "'; " + command + " 2>&1");
  }

  // Runs CMake's search for the build's libraries, without the one that find_package calls `library`.
  std::string ConfigureWithout(const std::string& library) const {
    return OutputOf("cmake -S '" SOURCE_DIRECTORY "' -B '" + (directory_ / "build") +
                    "' -DCMAKE_DISABLE_FIND_PACKAGE_" + library + "=ON");
  }

 private:
  // The search path, in which every directory with one of these programs is replaced by a copy without it. The
  // directories stay separate, because a compiler cache searches the later ones for the compiler.
  std::string PathWithout(const std::set<std::string>& hidden) const {
    std::istringstream machine(std::getenv("PATH"));
    std::string path;
    std::set<fs::path> seen;
    for (std::string directory; std::getline(machine, directory, ':');) {
      const bool usable = access(directory.c_str(), X_OK) == 0;  // a user's path may contain directories of root
      if (!usable || !seen.insert(fs::weakly_canonical(directory)).second) continue;
      const auto has = [&](const std::string& name) { return support::IsThere(fs::path(directory) / name); };
      const bool whole = std::none_of(hidden.begin(), hidden.end(), has);
      path += (path.empty() ? "" : ":") + (whole ? directory : DoubleOf(directory, hidden, seen.size()));
    }
    return path;
  }

  std::string DoubleOf(const fs::path& directory, const std::set<std::string>& hidden, std::size_t number) const {
    const fs::path into = directory_.path() / std::to_string(number);
    fs::create_directory(into);
    for (const fs::directory_entry& program : fs::directory_iterator(directory)) {
      const std::string name = program.path().filename().string();
      if (hidden.count(name) == 0) fs::create_symlink(program.path(), into / name);
    }
    return into.string();
  }

  support::TempDir directory_;
};

TEST_F(MissingPackages, nothing_is_said_where_everything_is_there) {
  EXPECT_EQ(OutputOf(std::string(kMake) + "packages"), "");
}

TEST_F(MissingPackages, programs_are_named_by_what_they_are) {
  const std::string output = OutputOf(std::string(kMake) + "packages", {"ninja", "c++"});
  EXPECT_THAT(output, HasSubstr("missing: a C++17 compiler (GCC 12, clang 14 or newer)\nmissing: Ninja\n"));
  EXPECT_THAT(output, Not(HasSubstr("g++")));
}

TEST_F(MissingPackages, libraries_are_named_with_their_least_version) {
  const std::string output = ConfigureWithout("nlohmann_json");
  EXPECT_THAT(output, HasSubstr("\nmissing: JSON for Modern C++ (nlohmann_json) 3.11 or newer, with its headers\n"));
  EXPECT_THAT(output, HasSubstr("install what is missing (nlohmann_json)"));
}

}  // namespace
