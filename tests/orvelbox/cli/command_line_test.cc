// What a command line asks for, and which device.
#include "orvelbox/cli/command_line.h"

#include <gmock/gmock.h>

#include <map>

namespace orvelbox {
namespace {

Options Parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "orvelbox");
  const auto parsed = ParseCommandLine(static_cast<int>(arguments.size()), arguments.data());
  EXPECT_TRUE(std::holds_alternative<Options>(parsed));
  return std::holds_alternative<Options>(parsed) ? std::get<Options>(parsed) : Options();
}

std::string Chosen(const std::string& option, const std::map<std::string, std::string>& environment) {
  return ChooseDevice(option, [&](const char* name) {
    const auto found = environment.find(name);
    return found == environment.end() ? nullptr : found->second.c_str();
  });
}

TEST(CommandLine, global_options_stand_before_or_after_the_command) {
  EXPECT_EQ(Parse({"--device", "d", "list"}).device, "d");
  EXPECT_EQ(Parse({"list", "--device", "d"}).device, "d");
}

TEST(CommandLine, a_command_has_its_target) {
  const Options options = Parse({"--plugin", "p.so", "--trace", "t.json", "upgrade", "dir"});
  EXPECT_EQ(options.command, "upgrade");
  EXPECT_EQ(options.target, "dir");
  EXPECT_EQ(options.plugin, "p.so");
  EXPECT_EQ(options.trace, "t.json");
}

TEST(CommandLine, events_are_named_in_any_case) {
  const auto events = Parse({"events", "clean:p", "Uninstall:q.I", "INSTALL:r"}).events;
  ASSERT_EQ(events.size(), 3u);
  EXPECT_EQ(events[0].hook + events[1].hook + events[2].hook, "CLEANUNINSTALLINSTALL");
  EXPECT_EQ(events[1].package_id, "q.I");
}

std::string ComplaintAbout(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "orvelbox");
  testing::internal::CaptureStderr();
  const auto parsed = ParseCommandLine(static_cast<int>(arguments.size()), arguments.data());
  EXPECT_TRUE(std::holds_alternative<int>(parsed) && std::get<int>(parsed) == 2);
  return testing::internal::GetCapturedStderr();
}

TEST(CommandLine, an_unknown_command_is_named) {
  EXPECT_THAT(ComplaintAbout({"frob"}), testing::HasSubstr("not expected: frob"));
}

TEST(CommandLine, a_missing_command_is_told) {
  EXPECT_THAT(ComplaintAbout({}), testing::HasSubstr("A subcommand is required"));
}

TEST(CommandLine, events_are_read_in_order_and_any_case) {
  const Options options = Parse({"events", "Install:a", "CLEANUP:b:c"});
  ASSERT_EQ(options.events.size(), 2U);
  EXPECT_EQ(options.events[0].hook, "INSTALL");
  EXPECT_EQ(options.events[0].package_id, "a");
  EXPECT_EQ(options.events[1].hook, "CLEANUP");
  EXPECT_EQ(options.events[1].package_id, "b:c");
}

TEST(CommandLine, the_log_is_shown_whole_unless_asked_otherwise) {
  const Options plain = Parse({"log"});
  EXPECT_EQ(plain.log_filter.priority, 'D');
  EXPECT_FALSE(plain.follow);
  const Options asked = Parse({"log", "--follow", "--tag", "T", "--priority", "E"});
  EXPECT_TRUE(asked.follow);
  EXPECT_EQ(asked.log_filter.tag, "T");
  EXPECT_EQ(asked.log_filter.priority, 'E');
}

TEST(CommandLine, the_option_wins_over_the_environment) {
  EXPECT_EQ(Chosen("o", {{"ORVELBOX_DEVICE", "/e"}}), "o");
  EXPECT_EQ(Chosen("", {{"ORVELBOX_DEVICE", "/e"}, {"XDG_STATE_HOME", "/x"}}), "/e");
}

TEST(CommandLine, the_xdg_state_directory_is_the_default) {
  EXPECT_EQ(Chosen("", {{"XDG_STATE_HOME", "/x"}, {"HOME", "/h"}}), "/x/orvelbox/device");
  EXPECT_EQ(Chosen("", {{"HOME", "/h"}}), "/h/.local/state/orvelbox/device");
  EXPECT_EQ(Chosen("", {{"XDG_STATE_HOME", "relative"}, {"HOME", "/h"}}), "/h/.local/state/orvelbox/device");
  EXPECT_EQ(Chosen("", {{"ORVELBOX_DEVICE", ""}, {"HOME", "/h"}}), "/h/.local/state/orvelbox/device");
}

TEST(CommandLine, no_device_at_all_is_an_error) { EXPECT_THROW(Chosen("", {}), host::DeviceError); }

}  // namespace
}  // namespace orvelbox
