// What a command line asks for.
#include "orvelbox/cli/command_line.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "orvelbox/commands/all.h"

namespace orvelbox {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// A command with an option of each kind.
class Cut : public Command {
 public:
  Cut() : Command("cut", "Cuts", "cut") {
    AddOption({"--fine", "", "Fine", &fine});
    AddOption({"--how", "H", "How", &how, {"a", "b"}});
    AddOption({"--with", "W", "With", &with});
    AddOption({"--times", "N", "Times", Number{&times, 3}});
    AddArgument({"THING", "", "What", &thing});
    AddArgument({"MORE", "", "What else", &more, {}, true});
    AddCommand({"deep", "Cuts deep", "", {}, {}, {}, &deep});
  }

  void Accept(const GlobalOptions& /*global*/) override {
    if (thing == "air") throw std::invalid_argument("air: cannot be cut");
  }
  int Run(const GlobalOptions& /*global*/) const override { return kDone; }

  bool fine = false;
  std::string how = "a";
  std::vector<std::string> with;
  unsigned times = 1;
  std::string thing;
  std::string more;
  bool deep = false;
};

class CommandLine : public testing::Test {
 protected:
  CommandLine() {
    auto cut = std::make_unique<Cut>();
    cut_ = cut.get();
    commands_.push_back(std::move(cut));
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

  Commands commands_;
  Cut* cut_;
};

TEST_F(CommandLine, global_options_stand_before_or_after_the_command) {
  EXPECT_EQ(Global({"--device", "d", "cut", "x"}).device, "d");
  EXPECT_EQ(Global({"cut", "x", "--device", "d"}).device, "d");
}

TEST_F(CommandLine, a_command_has_its_options_and_arguments) {
  const auto parsed = Parse({"--plugin", "p.so", "--trace", "t.json", "cut", "--fine", "--how", "b", "--with", "saw",
                             "--with", "axe", "--times", "3", "wood", "--quiet"});
  const auto& request = std::get<Request>(parsed);
  EXPECT_EQ(request.command, cut_);
  EXPECT_EQ(request.global.plugin, "p.so");
  EXPECT_EQ(request.global.trace, "t.json");
  EXPECT_TRUE(request.global.quiet);
  EXPECT_TRUE(cut_->fine);
  EXPECT_EQ(cut_->how, "b");
  EXPECT_THAT(cut_->with, ElementsAre("saw", "axe"));
  EXPECT_EQ(cut_->times, 3U);
  EXPECT_EQ(cut_->thing, "wood");
  EXPECT_EQ(cut_->more, "");
  EXPECT_FALSE(cut_->deep);
}

TEST_F(CommandLine, a_command_of_a_command_is_noted) {
  Parse({"cut", "wood", "deep"});
  EXPECT_TRUE(cut_->deep);
}

TEST_F(CommandLine, an_unknown_command_is_named) {
  EXPECT_THAT(ComplaintAbout({"frob"}), HasSubstr("not expected: frob"));
}

TEST_F(CommandLine, a_missing_command_is_told) {
  EXPECT_THAT(ComplaintAbout({}), HasSubstr("A subcommand is required"));
}

TEST_F(CommandLine, what_an_option_does_not_take_is_named) {
  EXPECT_THAT(ComplaintAbout({"cut"}), HasSubstr("THING is required"));
  EXPECT_THAT(ComplaintAbout({"cut", "x", "--how", "c"}), HasSubstr("c not in {a,b}"));
  EXPECT_THAT(ComplaintAbout({"cut", "x", "--times", "4"}), HasSubstr("--times: Value 4 not in range"));
}

TEST_F(CommandLine, wrong_usage_that_only_the_command_knows_is_told_in_its_words) {
  EXPECT_EQ(ComplaintAbout({"cut", "air"}), "orvelbox: air: cannot be cut\n");
}

TEST(Commands, each_name_is_there_once) {
  std::vector<std::string> names;
  for (const auto& command : AllCommands()) names.push_back(command->facts().name);
  std::sort(names.begin(), names.end());
  EXPECT_GT(names.size(), 15U);
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

}  // namespace
}  // namespace orvelbox
