// Installs the system, and runs commands that use only what was installed.
#include "tests/package/installed_tree.h"

#include <unistd.h>

#include <filesystem>

#include "tests/support/command.h"

namespace package {

namespace fs = std::filesystem;

std::string InterfaceVersion() {
  const std::string list = support::ReadFile(INTERFACE_LIST);
  const std::string mark = "\n# interface ";
  const std::size_t at = list.find(mark);
  if (at == std::string::npos) return "no version in the list";
  const std::size_t begin = at + mark.size();
  return list.substr(begin, list.find('\n', begin) - begin);
}

void InstalledTree::SetUp() {
  if (access(BUILD_DIRECTORY, W_OK) != 0) {
    GTEST_SKIP() << BUILD_DIRECTORY
        ": `cmake --install` notes there what it installed, but this user may not write to "
        "it; run the tests as its owner";
  }
  Install("");
}

std::string InstalledTree::Install(const std::string& component) const {
  const std::string prefix = component.empty() ? Prefix() : InTestDirectory("only-" + component);
  const std::string option = component.empty() ? "" : " --component " + component;
  const std::string output =
      support::OutputOf(CMAKE_PROGRAM " --install '" BUILD_DIRECTORY "' --prefix '" + prefix + "'" + option);
  EXPECT_EQ(output.find("(ended with"), std::string::npos) << output;
  return prefix;
}

std::set<std::string> InstalledTree::FilesBelow(const std::string& prefix) {
  std::set<std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(prefix)) {
    if (entry.is_regular_file()) files.insert(entry.path().lexically_relative(prefix).string());
  }
  return files;
}

std::string InstalledTree::InFolder(const std::string& folder, const std::string& command) const {
  fs::create_directories(InTestDirectory(folder));
  support::WriteFile(InTestDirectory("command.sh"), command);
  return support::OutputOf("cd '" + InTestDirectory(folder) + "' && env -i PATH=\"$PATH\" PKG_CONFIG_LIBDIR='" +
                           Libraries() + "/pkgconfig' sh '" + InTestDirectory("command.sh") + "'");
}

}  // namespace package
