// States of a device and how they differ.
#include <gmock/gmock.h>

#include "orvelbox/operations/lifecycle.h"
#include "platform/host/package_store.h"
#include "tests/support/files.h"

namespace orvelbox {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(DeviceState, differences_are_what_came_went_and_changed) {
  EXPECT_THAT(Differences({{"/a", "1"}, {"/b", "1"}, {"/c", "1"}}, {{"/b", "2"}, {"/c", "1"}, {"/d", "1"}}),
              ElementsAre("- /a", "~ /b", "+ /d"));
  EXPECT_THAT(Differences({{"/a", "1"}}, {{"/a", "1"}}), IsEmpty());
}

TEST(DeviceState, sees_files_links_directories_and_packages) {
  const support::TempDir dir;
  const host::Device device = host::CreateDevice(dir / "device");
  const DeviceState before = StateOf(device);
  support::WriteFile(device.Root() / "opt/usr/home/owner/share/dotnet/TPA.txt", "[START][ENd]");
  std::filesystem::create_directory(device.Root() / "opt/usr/empty");
  std::filesystem::create_symlink("nowhere", device.Root() / "opt/usr/link");
  host::Package package;
  package.id = "a";
  package.root = "/opt/usr/globalapps/a";
  host::PackageStore(device.Database(), host::PackageStore::Mode::kReadWrite).Put(package);
  support::WriteFile(device.Log(), "not looked at");
  EXPECT_THAT(
      Differences(before, StateOf(device)),
      ElementsAre("+ /opt/usr/empty", "~ /opt/usr/home/owner/share/dotnet/TPA.txt", "+ /opt/usr/link", "+ package a"));
}

}  // namespace
}  // namespace orvelbox
