// Runs the plug-in of a build for a device, with the installed host platform as the sysroot.
#include <gmock/gmock.h>

#include "platform/host/device.h"
#include "platform/host/fixed_paths.h"
#include "tests/package/installed_tree.h"
#include "tests/support/command.h"

namespace package {
namespace {

using testing::HasSubstr;

class DevicePlugin : public InstalledTree {
 protected:
  // Configures and builds as for a device; only the sysroot provides the platform.
  std::string Build() const {
    return InFolder("new",
                    "set -e; '" CMAKE_PROGRAM "' -S '" SOURCE_DIRECTORY
                    "' -B build -DCMAKE_BUILD_TYPE=Release -DORVEL_PLATFORM=system -DCMAKE_CXX_COMPILER='" COMPILER
                    "' -DCMAKE_CXX_FLAGS='" TOOL_FLAGS "' -DCMAKE_PREFIX_PATH='" +
                        Prefix() + "'; '" CMAKE_PROGRAM "' --build build --parallel 2");
  }
  std::string Plugin() const { return InTestDirectory("new/build/plugin/libmorvath.so"); }

  // The needed libraries of the plug-in, from `readelf -d`.
  std::string Needed() const { return support::OutputOf(READELF_PROGRAM " -d '" + Plugin() + "' | grep NEEDED"); }

  // Installs a package with a DLL of the platform on a new device, with that plug-in.
  std::string InstallPackage() const {
    const host::Device device = host::CreateDevice(InTestDirectory("device"));
    support::WriteFile(device.OnDesk("/usr/share/dotnet.orvel/framework/Twice.dll"), "the platform's");
    support::WriteFile(InTestDirectory("shop/bin/Twice.dll"), "the package's");
    support::WriteFile(InTestDirectory("shop/orvel-manifest.xml"),
                       "<manifest package=\"org.example.shop\" version=\"1\"><ui-application "
                       "appid=\"org.example.shop.main\" exec=\"Main.dll\" type=\"dotnet-inhouse\"/></manifest>");
    return support::OutputOf("'" + Prefix() + "/" PROGRAM_DIRECTORY "/orvelbox' --device '" +
                             device.directory.string() + "' --plugin '" + Plugin() + "' install '" +
                             InTestDirectory("shop") + "'");
  }
};

TEST_F(DevicePlugin, is_built_against_the_sysroot_and_does_its_work) {
  const std::string output = Build();
  ASSERT_TRUE(std::filesystem::exists(Plugin())) << output;
  EXPECT_FALSE(std::filesystem::exists(InTestDirectory("new/build/orvelbox"))) << "nothing of a desk is built";
  EXPECT_THAT(Needed(), HasSubstr("liborvel_pkgmgr_info.so"));
  std::string reason;
  if (host::AvailableFixedPathsMethod(&reason) == host::FixedPathsMethod::kNone) GTEST_SKIP() << reason;
  EXPECT_THAT(InstallPackage(), HasSubstr("removed  bin/Twice.dll: the platform has"));
}

}  // namespace
}  // namespace package
