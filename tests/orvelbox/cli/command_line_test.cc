// Parsing command lines.
#include "orvelbox/cli/command_line.h"

#include <set>
#include <stdexcept>
#include <type_traits>

#include "orvelbox/commands/all.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

static_assert(!std::is_copy_constructible_v<Command>, "the functions of a copy would refer to another's values");

class CommandLine : public testing::Test {
 protected:
  CommandLine() {
    cut_.check = [this](const GlobalOptions& /*global*/) {
      if (thing_ == "air") throw std::invalid_argument("air: cannot be cut");
    };
    commands_.push_back(std::move(cut_));
    commands_.emplace_back("wait", "Waits", "wait");  // moves the first command again
  }

  std::variant<Request, int> Parse(std::vector<const char*> arguments) const {
    arguments.insert(arguments.begin(), "orvelbox");
    return ParseCommandLine(commands_, static_cast<int>(arguments.size()), arguments.data());
  }

  GlobalOptions Global(const std::vector<const char*>& arguments) const {
    return std::get<Request>(Parse(arguments)).global;
  }

  std::string ComplaintAbout(const std::vector<const char*>& arguments) const {
    testing::internal::CaptureStderr();
    EXPECT_EQ(std::get<int>(Parse(arguments)), kUsage);
    return testing::internal::GetCapturedStderr();
  }

  // A command with an option of each kind.
  Command cut_{"cut", "Cuts", "cut"};
  const bool& fine_ = cut_.Take<bool>({"--fine", "", "Fine"});
  const std::string& how_ = cut_.Take<std::string>({"--how", "H", "How", {"a", "b"}}, "a");
  const std::vector<std::string>& with_ = cut_.Take<std::vector<std::string>>({"--with", "W", "With"});
  const unsigned& times_ = cut_.Take<unsigned>({"--times", "N", "Times", {}, false, 3}, 1);
  const std::string& thing_ = cut_.Take<std::string>({"THING", "", "What"});
  const std::string& more_ = cut_.Take<std::string>({"MORE", "", "What else", {}, true});
  const bool& deep_ = cut_.AddCommand("deep", "Cuts deep", "");
  Commands commands_;
};

TEST_F(CommandLine, global_options_stand_before_or_after_the_command) {
  EXPECT_EQ(Global({"--device", "d", "cut", "x"}).device, "d");
  EXPECT_EQ(Global({"cut", "x", "--device", "d"}).device, "d");
}

TEST_F(CommandLine, a_command_has_its_options_and_arguments) {
  const auto parsed = Parse({"--plugin", "p.so", "--trace", "t.json", "cut", "--fine", "--how", "b", "--with", "saw",
                             "--with", "axe", "--times", "3", "wood", "--quiet"});
  const auto& request = std::get<Request>(parsed);
  EXPECT_EQ(request.command, &commands_.front());
  EXPECT_EQ(request.global.plugin, "p.so");
  EXPECT_EQ(request.global.trace, "t.json");
  EXPECT_TRUE(request.global.quiet);
  EXPECT_TRUE(fine_);
  EXPECT_EQ(how_, "b");
  EXPECT_THAT(with_, ElementsAre("saw", "axe"));
  EXPECT_EQ(times_, 3U);
  EXPECT_EQ(thing_, "wood");
  EXPECT_EQ(more_, "");
  EXPECT_FALSE(deep_);
}

TEST_F(CommandLine, a_command_of_a_command_is_noted) {
  Parse({"cut", "wood", "deep"});
  EXPECT_TRUE(deep_);
}

TEST_F(CommandLine, a_mistyped_command_is_told_from_what_was_meant) {
  EXPECT_EQ(ComplaintAbout({"ctu", "x"}), "orvelbox: ctu: no such command; did you mean cut?\n");
  EXPECT_EQ(ComplaintAbout({"--device", "d", "wiat"}), "orvelbox: wiat: no such command; did you mean wait?\n");
  EXPECT_EQ(ComplaintAbout({"frob"}), "orvelbox: frob: no such command; see: orvelbox --help\n");
  EXPECT_EQ(ComplaintAbout({"--", "frob"}), "orvelbox: frob: no such command; see: orvelbox --help\n");
  EXPECT_EQ(ComplaintAbout({""}), "orvelbox: an empty argument; see: orvelbox --help\n");
}

TEST_F(CommandLine, a_mistyped_option_is_told_from_what_was_meant) {
  EXPECT_EQ(ComplaintAbout({"cut", "--hwo", "a", "x"}), "orvelbox: --hwo: no such option; did you mean --how?\n");
  EXPECT_EQ(ComplaintAbout({"cut", "--fien"}), "orvelbox: --fien: no such option; did you mean --fine?\n");
  EXPECT_EQ(ComplaintAbout({"cut", "-device=d", "x"}), "orvelbox: -device: no such option; did you mean --device?\n");
  EXPECT_EQ(ComplaintAbout({"wait", "--fine"}), "orvelbox: --fine: no such option; see: orvelbox wait --help\n");
  EXPECT_EQ(ComplaintAbout({"--how", "a", "cut", "x"}),
            "orvelbox: --how: stands before the command that takes it; write: orvelbox cut --how\n");
  EXPECT_EQ(ComplaintAbout({"cut", "x", "deep", "--bogus"}),
            "orvelbox: --bogus: no such option; see: orvelbox cut deep --help\n");
}

TEST_F(CommandLine, an_argument_too_many_is_told) {
  EXPECT_EQ(ComplaintAbout({"wait", "x"}), "orvelbox: x: one argument too many; see: orvelbox wait --help\n");
  EXPECT_EQ(ComplaintAbout({"wait", "--", "x"}), "orvelbox: x: one argument too many; see: orvelbox wait --help\n");
}

TEST_F(CommandLine, no_command_at_all_shows_the_short_help) {
  commands_[0].SetGroup("Sawing");
  commands_[1].SetGroup("Resting");
  const std::string help = ComplaintAbout({});
  EXPECT_THAT(help, StartsWith("orvelbox: no command\n"));
  EXPECT_THAT(help, HasSubstr("\nSawing:\n  cut               Cuts\n\nResting:\n  wait              Waits\n"));
  EXPECT_THAT(help, Not(HasSubstr("--device"))) << "the options are the long help's";
  EXPECT_EQ(ComplaintAbout({"--quiet"}), help);
}

TEST_F(CommandLine, the_versions_of_program_and_interface_are_told) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(std::get<int>(Parse({"--version"})), kDone);
  EXPECT_THAT(testing::internal::GetCapturedStdout(),
              testing::MatchesRegex("orvelbox [0-9.]+\nplug-in interface [0-9]+\\.[0-9]+\n"));
}

TEST_F(CommandLine, what_an_option_does_not_take_is_named) {
  EXPECT_THAT(ComplaintAbout({"cut"}), HasSubstr("THING is required"));
  EXPECT_THAT(ComplaintAbout({"cut", "x", "--how", "c"}), HasSubstr("c not in {a,b}"));
  EXPECT_THAT(ComplaintAbout({"cut", "x", "--times", "4"}), HasSubstr("--times: Value 4 not in range"));
}

TEST_F(CommandLine, wrong_usage_that_only_the_command_knows_is_told_in_its_words) {
  EXPECT_EQ(ComplaintAbout({"cut", "air"}), "orvelbox: air: cannot be cut\n");
}

TEST(Commands, each_is_told_in_its_group_by_one_short_line) {
  std::set<std::string> groups;
  for (const Command& command : AllCommands()) {
    groups.insert(command.facts().group);
    EXPECT_LE(command.facts().description.size(), 60U) << command.facts().name;
  }
  EXPECT_THAT(groups, ElementsAre("Devices", "Hooks", "Looking", "Packages"));
}

TEST(Commands, each_name_is_there_once) {
  std::vector<std::string> names;
  for (const Command& command : AllCommands()) names.push_back(command.facts().name);
  std::sort(names.begin(), names.end());
  EXPECT_GT(names.size(), 15U);
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

}  // namespace
}  // namespace orvelbox
