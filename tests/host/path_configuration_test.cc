// The path-configuration library.
#include <cstdlib>

#include "orvel/ovplatform.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

TEST(PathConfiguration, the_root_is_that_of_the_device) {
  const samples::EnvironmentDevice device;
  WriteFile(device.device().ConfigFile(), R"({"format": 1, "read_write_root": "/opt/usr/apps"})");
  EXPECT_STREQ("/opt/usr/apps", ovplatform_getenv(OVPLATFORM_RW_APPS_ROOT));
}

TEST(PathConfiguration, without_a_device_the_root_is_the_usual_one) {
  unsetenv(host::kDeviceVariable);
  EXPECT_STREQ("/opt/usr/globalapps", ovplatform_getenv(27));
}

TEST(PathConfiguration, a_text_once_handed_out_stays) {
  const samples::EnvironmentDevice device;
  const char* first = ovplatform_getenv(OVPLATFORM_RW_APPS_ROOT);
  WriteFile(device.device().ConfigFile(), R"({"format": 1, "read_write_root": "/opt/usr/apps"})");
  EXPECT_STREQ("/opt/usr/apps", ovplatform_getenv(OVPLATFORM_RW_APPS_ROOT));
  EXPECT_STREQ("/opt/usr/globalapps", first);
}

TEST(PathConfiguration, other_variables_and_damaged_devices_have_no_value) {
  const samples::EnvironmentDevice device;
  EXPECT_EQ(nullptr, ovplatform_getenv(26));
  WriteFile(device.device().ConfigFile(), "{");
  EXPECT_EQ(nullptr, ovplatform_getenv(OVPLATFORM_RW_APPS_ROOT));
}

}  // namespace
}  // namespace host_tests
