// A build for a device, with the installed host platform as the sysroot.
#include <gmock/gmock.h>

#include "tests/package/installed_tree.h"

namespace package {
namespace {

using DeviceBuild = InstalledTree;

TEST_F(DeviceBuild, installs_the_plugin_and_its_development_files_only) {
  const std::string output =
      InFolder("new", "set -e; '" CMAKE_PROGRAM "' -S '" SOURCE_DIRECTORY
                      "' -B build -DORVEL_PLATFORM=system -DCMAKE_CXX_COMPILER='" COMPILER "' -DCMAKE_PREFIX_PATH='" +
                          Prefix() + "'; '" CMAKE_PROGRAM "' --build build --target list_install_components");
  EXPECT_THAT(output, testing::HasSubstr("components are: \"development\" \"plugin\"\n"));
}

}  // namespace
}  // namespace package
