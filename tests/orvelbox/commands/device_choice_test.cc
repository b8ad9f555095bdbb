// The choice of the device.

#include <map>

#include "orvelbox/commands/shared.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

std::string Chosen(const std::string& option, const std::map<std::string, std::string>& environment) {
  return ChooseDevice(option, [&](const char* name) {
    const auto found = environment.find(name);
    return found == environment.end() ? nullptr : found->second.c_str();
  });
}

TEST(DeviceChoice, the_option_wins_over_the_environment) {
  EXPECT_EQ(Chosen("o", {{"ORVELBOX_DEVICE", "/e"}}), "o");
  EXPECT_EQ(Chosen("", {{"ORVELBOX_DEVICE", "/e"}, {"XDG_STATE_HOME", "/x"}}), "/e");
}

TEST(DeviceChoice, the_xdg_state_directory_is_the_default) {
  EXPECT_EQ(Chosen("", {{"XDG_STATE_HOME", "/x"}, {"HOME", "/h"}}), "/x/orvelbox/device");
  EXPECT_EQ(Chosen("", {{"HOME", "/h"}}), "/h/.local/state/orvelbox/device");
  EXPECT_EQ(Chosen("", {{"XDG_STATE_HOME", "relative"}, {"HOME", "/h"}}), "/h/.local/state/orvelbox/device");
  EXPECT_EQ(Chosen("", {{"ORVELBOX_DEVICE", ""}, {"HOME", "/h"}}), "/h/.local/state/orvelbox/device");
}

TEST(DeviceChoice, no_device_at_all_is_an_error) { EXPECT_THROW(Chosen("", {}), host::DeviceError); }

}  // namespace
}  // namespace orvelbox
