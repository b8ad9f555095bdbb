// A test with an installed system in its own directory.
#ifndef TESTS_PACKAGE_INSTALLED_TREE_H_
#define TESTS_PACKAGE_INSTALLED_TREE_H_

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/support/files.h"

namespace package {

// The version in the list of exported symbols.
std::string InterfaceVersion();

class InstalledTree : public testing::Test {
 protected:
  // Installs everything into Prefix(). Skips if this user may not install from the build directory.
  void SetUp() override;

  // Installs one component, or everything for an empty name, below the test's directory. Returns the prefix.
  std::string Install(const std::string& component) const;

  std::string Prefix() const { return InTestDirectory("prefix"); }
  std::string Libraries() const { return Prefix() + "/" LIBRARY_DIRECTORY; }
  std::string Headers() const { return Prefix() + "/" INCLUDE_DIRECTORY; }
  std::string InTestDirectory(const std::string& name) const { return directory_ / name; }
  // The regular files below `prefix`, as relative paths.
  static std::set<std::string> FilesBelow(const std::string& prefix);

  // Runs a command in the directory `folder` of the test's directory, with an environment that has only the search
  // path, and with a pkg-config that finds only the installed tree. Returns its output.
  std::string InFolder(const std::string& folder, const std::string& command) const;

 private:
  support::TempDir directory_;
};

}  // namespace package

#endif
