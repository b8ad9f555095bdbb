// The installed orvelbox.
#include <gmock/gmock.h>

#include "platform/host/device.h"
#include "platform/host/fixed_paths.h"
#include "tests/package/installed_tree.h"
#include "tests/support/command.h"

namespace package {
namespace {

using InstalledOrvelbox = InstalledTree;

TEST_F(InstalledOrvelbox, tells_its_version_and_the_interfaces) {
  EXPECT_EQ(support::OutputOf("'" + Prefix() + "/" PROGRAM_DIRECTORY "/orvelbox' --version"),
            "orvelbox " PROGRAM_VERSION "\nplug-in interface " + InterfaceVersion() + "\n");
}

TEST_F(InstalledOrvelbox, calls_the_hooks_of_the_installed_plugin) {
  std::string reason;
  if (host::AvailableFixedPathsMethod(&reason) == host::FixedPathsMethod::kNone) GTEST_SKIP() << reason;
  const std::string device = host::CreateDevice(InTestDirectory("device")).directory;
  support::WriteFile(
      InTestDirectory("shop/orvel-manifest.xml"),
      "<manifest package=\"org.example.shop\" version=\"1\"><ui-application appid=\"org.example.shop.main\" "
      "exec=\"Main.dll\" type=\"dotnet\"/></manifest>");
  const std::string output =
      support::OutputOf("ORVELBOX_DEVICE='" + device + "' '" + Prefix() + "/" PROGRAM_DIRECTORY "/orvelbox' install '" +
                        InTestDirectory("shop") + "'");
  EXPECT_THAT(output, testing::HasSubstr("INSTALL returned 0, CLEAN returned 0\n"));
}

}  // namespace
}  // namespace package
