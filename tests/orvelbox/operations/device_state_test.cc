// States of a device and their differences.

#include "orvelbox/operations/lifecycle.h"
#include "platform/host/package_store.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

TEST(DeviceState, differences_are_what_came_went_and_changed) {
  EXPECT_THAT(Differences({{"/a", "1"}, {"/b", "1"}, {"/c", "1"}}, {{"/b", "2"}, {"/c", "1"}, {"/d", "1"}}),
              ElementsAre("- /a", "~ /b", "+ /d"));
  EXPECT_THAT(Differences({{"/a", "1"}}, {{"/a", "1"}}), IsEmpty());
}

TEST(DeviceState, sees_files_links_directories_and_packages) {
  const support::TempDir dir;
  const host::Device device = host::CreateDevice(dir / "device");
  const DeviceState before = StateOf(device);
  WriteFile(device.Root() / "opt/usr/home/owner/share/dotnet/TPA.txt", "[START][ENd]");
  fs::create_directory(device.Root() / "opt/usr/empty");
  fs::create_symlink("nowhere", device.Root() / "opt/usr/link");
  host::Package package;
  package.id = "a";
  package.root = "/opt/usr/globalapps/a";
  host::PackageStore(device.Database(), host::PackageStore::Mode::kReadWrite).Put(package);
  WriteFile(device.Log(), "not looked at");
  EXPECT_THAT(
      Differences(before, StateOf(device)),
      ElementsAre("+ /opt/usr/empty", "~ /opt/usr/home/owner/share/dotnet/TPA.txt", "+ /opt/usr/link", "+ package a"));
}

TEST(DeviceState, of_a_device_whose_files_are_gone_is_an_error_that_names_them) {
  const support::TempDir dir;
  const host::Device device = host::CreateDevice(dir / "device");
  fs::remove_all(device.Root());
  EXPECT_THAT(ErrorOf([&] { StateOf(device); }), StartsWith(device.Root().string() + ": cannot read: "));
}

}  // namespace
}  // namespace orvelbox
