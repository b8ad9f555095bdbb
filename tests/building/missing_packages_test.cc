// Machines without Debian's package tools: nothing is installed, and what is missing is named by what it is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "tests/support/command.h"
#include "tests/support/files.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kMake = "make -s -C '" SOURCE_DIRECTORY "' ";

class MissingPackages : public testing::Test {
 protected:
  // All programs of this machine but those of Debian's packages.
  MissingPackages() {
    std::istringstream path(std::getenv("PATH"));
    for (std::string directory; std::getline(path, directory, ':');) LinkAllOf(directory);
    for (const char* name : {"apt-get", "dpkg", "dpkg-query"}) Hide(name);
  }

  void Hide(const std::string& program) const { fs::remove(programs_ / program); }

  // What the command prints with those programs.
  std::string OutputOf(const std::string& command) const {
    return support::OutputOf("PATH='" + programs_.path().string() + "'; " + command + " 2>&1");
  }

  // Lets CMake look for what the build takes, without the library that find_package calls so.
  std::string ConfigureWithout(const std::string& library) const {
    return OutputOf("cmake -S '" SOURCE_DIRECTORY "' -B '" + (build_ / "build") + "' -DCMAKE_DISABLE_FIND_PACKAGE_" +
                    library + "=ON");
  }

 private:
  void LinkAllOf(const std::string& directory) const {
    std::error_code ignored;
    for (const fs::directory_entry& program : fs::directory_iterator(directory, ignored)) {
      fs::create_symlink(program.path(), programs_ / program.path().filename(), ignored);  // the first one counts
    }
  }

  support::TempDir programs_;
  support::TempDir build_;
};

TEST_F(MissingPackages, nothing_is_said_where_everything_is_there) {
  EXPECT_EQ(OutputOf(std::string(kMake) + "packages"), "");
}

TEST_F(MissingPackages, programs_are_named_by_what_they_are) {
  Hide("ninja");
  Hide("c++");
  const std::string output = OutputOf(std::string(kMake) + "packages");
  EXPECT_THAT(output, HasSubstr("missing: a C++17 compiler (GCC 12, clang 14 or newer)\nmissing: Ninja\n"));
  EXPECT_THAT(output, Not(HasSubstr("g++")));
}

TEST_F(MissingPackages, libraries_are_named_with_their_least_version) {
  const std::string output = ConfigureWithout("SQLite3");
  EXPECT_THAT(output, HasSubstr("\nmissing: SQLite 3.40 or newer, with its headers\n"));
  EXPECT_THAT(output, HasSubstr("install what is missing (SQLite3)"));
}

}  // namespace
