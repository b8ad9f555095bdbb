// Devices: created completely or not at all, and opened only if this version supports their format.
#include "platform/host/device.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tests/host/frame.h"

namespace host_tests {
namespace {

class DeviceDirectory : public DirectoryTest {
 protected:
  fs::path NewDirectory() const { return directory() / "device"; }
  // A device whose device.json has the content `text`.
  host::Device DeviceSaying(const std::string& text) const {
    const auto device = host::CreateDevice(NewDirectory());
    WriteFile(device.ConfigFile(), text);
    return device;
  }
};

TEST_F(DeviceDirectory, a_new_device_has_all_its_parts) {
  const auto device = host::CreateDevice(NewDirectory());
  EXPECT_THAT(support::NamesIn(device.Root() / "usr/share/dotnet.orvel"),
              ElementsAre("d.pc", "framework", "netcoreapp", "tvappapi"));
  EXPECT_EQ("[START][END]", ReadFile(device.Root() / "opt/usr/home/owner/share/dotnet/TPA.txt"));
  EXPECT_EQ("[START][END]", ReadFile(device.Root() / "opt/usr/home/owner/share/dotnet/CoBA.txt"));
  EXPECT_TRUE(fs::is_directory(device.Root() / "opt/usr/globalapps"));
  EXPECT_FALSE(fs::exists(device.Root() / "etc/release"));
  EXPECT_EQ("", ReadFile(device.Log()));
  EXPECT_TRUE(PackageStore(device.Database(), PackageStore::Mode::kReadOnly).List().empty());
}

TEST_F(DeviceDirectory, missing_parents_are_made) {
  host::CreateDevice(directory() / "a/b/device");
  EXPECT_EQ(directory() / "a/b/device", host::OpenDevice(directory() / "a/b/device/").directory);
}

TEST_F(DeviceDirectory, a_relative_name_becomes_absolute) {
  const fs::path before = fs::current_path();
  fs::current_path(directory());
  const auto device = host::CreateDevice("device");
  fs::current_path(before);
  EXPECT_TRUE(device.directory.is_absolute());
  EXPECT_TRUE(fs::exists(NewDirectory() / "device.json"));
}

TEST_F(DeviceDirectory, the_configured_root_is_made_and_read_back) {
  const auto device = host::CreateDevice(NewDirectory(), {"/opt/usr/apps"});
  EXPECT_TRUE(fs::is_directory(device.Root() / "opt/usr/apps"));
  EXPECT_EQ("/opt/usr/apps", host::ReadConfig(device).read_write_root);
}

TEST_F(DeviceDirectory, a_directory_with_content_is_refused_and_left_alone) {
  WriteFile(NewDirectory() / "mine", "x");
  EXPECT_EQ(NewDirectory().string() + ": is not empty; name a new or empty directory",
            ErrorOf([&] { host::CreateDevice(NewDirectory()); }));
  EXPECT_THAT(support::NamesIn(NewDirectory()), ElementsAre("mine"));
}

TEST_F(DeviceDirectory, a_device_is_not_made_twice) {
  host::CreateDevice(NewDirectory());
  EXPECT_EQ(NewDirectory().string() + ": is a device already; name a new or empty directory",
            ErrorOf([&] { host::CreateDevice(NewDirectory()); }));
  EXPECT_NO_THROW(host::OpenDevice(NewDirectory()));
}

TEST_F(DeviceDirectory, an_empty_directory_may_become_a_device) {
  fs::create_directory(NewDirectory());
  host::CreateDevice(NewDirectory());
  EXPECT_NO_THROW(host::OpenDevice(NewDirectory()));
}

TEST_F(DeviceDirectory, a_file_is_no_place_for_a_device) {
  WriteFile(NewDirectory(), "x");
  EXPECT_THAT(ErrorOf([&] { host::CreateDevice(NewDirectory()); }), HasSubstr(": is no directory; "));
  EXPECT_THAT(ErrorOf([&] { host::CreateDevice(NewDirectory() / "below"); }), HasSubstr(NewDirectory().string()));
}

TEST_F(DeviceDirectory, a_root_outside_of_the_user_area_is_refused_before_anything_is_made) {
  for (const char* root : {"/opt/usr", "/opt/usr/", "/opt/usr/..", "/opt/usr/../x", "/srv/apps", "opt/usr/apps",
                           "/opt/usr/apps/", "/opt/usr//apps", "/opt/usrx/apps", ""}) {
    EXPECT_EQ(std::string("read_write_root \"") + root + "\" must be a plain absolute path below /opt/usr/",
              ErrorOf([&] { host::CreateDevice(NewDirectory(), {root}); }));
  }
  EXPECT_FALSE(fs::exists(NewDirectory()));
}

TEST_F(DeviceDirectory, a_failure_takes_back_the_directories_it_made) {
  const fs::path deep = directory() / "a" / "b";
  support::InFreshProcess([&] {
    ASSERT_EQ(0, chmod(directory().c_str(), 0777));
    machine::BecomeOrdinaryUser();
    umask(0777);  // so that nothing can be created in a new directory
    EXPECT_NE("no error", ErrorOf([&] { host::CreateDevice(deep); }));
  });
  EXPECT_THAT(support::NamesIn(directory()), ElementsAre());
}

TEST_F(DeviceDirectory, opening_what_is_no_device_says_how_to_make_one) {
  EXPECT_EQ(NewDirectory().string() + ": no device there; make one with: orvelbox init, or name another with --device",
            ErrorOf([&] { host::OpenDevice(NewDirectory()); }));
}

TEST_F(DeviceDirectory, a_device_of_a_newer_version_is_refused) {
  const auto device = DeviceSaying(R"({"format": 2, "read_write_root": 7})");
  EXPECT_EQ(device.directory.string() +
                ": made by a newer orvelbox (format 2, this one reads 1); use that version, or another device with "
                "--device",
            ErrorOf([&] { host::OpenDevice(device.directory); }));
}

TEST_F(DeviceDirectory, damage_is_told_as_what_it_is) {
  const auto device = DeviceSaying("");
  const char* const no_object = "it is no JSON object";
  const char* const no_number = "\"format\" is no number";
  const char* const no_text = "\"read_write_root\" is no text";
  const std::pair<const char*, const char*> damages[] = {
      {"", no_object},
      {"{", no_object},
      {"[]", no_object},
      {"null", no_object},
      {"\xff\xfe", no_object},
      {"{}", no_number},
      {R"({"format": "1"})", no_number},
      {R"({"format": -1})", no_number},
      {R"({"format": 0, "read_write_root": "x"})", "there is no format 0"},
      {R"({"format": 1})", no_text},
      {R"({"format": 1, "read_write_root": 3})", no_text},
      {R"({"format": 1, "read_write_root": "/etc"})",
       "read_write_root \"/etc\" must be a plain absolute path below /opt/usr/"}};
  for (const auto& [text, damage] : damages) {
    WriteFile(device.ConfigFile(), text);
    EXPECT_EQ(device.ConfigFile().string() + ": damaged (" + damage +
                  "); restore it, or make a new device with: orvelbox init",
              ErrorOf([&] { host::OpenDevice(device.directory); }));
  }
}

TEST_F(DeviceDirectory, a_name_that_is_none_is_told) {
  EXPECT_EQ("\"\": no usable directory name", ErrorOf([] { host::OpenDevice(""); }));
}

TEST_F(DeviceDirectory, a_configuration_that_cannot_be_read_is_named) {
  const auto device = host::CreateDevice(NewDirectory());
  fs::remove(device.ConfigFile());
  fs::create_directory(device.ConfigFile());
  EXPECT_EQ(device.ConfigFile().string() + ": cannot read: " + std::strerror(EISDIR),
            ErrorOf([&] { host::OpenDevice(device.directory); }));
}

TEST(DeviceOfEnvironment, is_the_named_directory_made_absolute) {
  setenv(host::kDeviceVariable, "some/../device/", 1);
  const auto device = host::DeviceOfEnvironment();
  unsetenv(host::kDeviceVariable);
  ASSERT_TRUE(device);
  EXPECT_EQ(fs::current_path() / "device", device->directory);
}

TEST(DeviceOfEnvironment, is_none_when_the_variable_is_unset_or_empty) {
  unsetenv(host::kDeviceVariable);
  EXPECT_FALSE(host::DeviceOfEnvironment());
  setenv(host::kDeviceVariable, "", 1);
  EXPECT_FALSE(host::DeviceOfEnvironment());
  unsetenv(host::kDeviceVariable);
}

TEST(DeviceLayout, device_paths_lie_below_its_root) {
  const host::Device device{"/d"};
  EXPECT_EQ("/d/root/opt/usr/x", device.OnDesk("/opt/usr/x"));
}

}  // namespace
}  // namespace host_tests
