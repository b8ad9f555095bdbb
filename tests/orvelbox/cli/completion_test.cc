// What may stand at the end of a command line that is being typed.
#include "orvelbox/cli/completion.h"

#include <stdexcept>

#include "orvelbox/commands/all.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

TEST(ShellWordsOf, a_line_are_unquoted) {
  EXPECT_THAT(ShellWords("box  cut wood"), ElementsAre("box", "cut", "wood"));
  EXPECT_THAT(ShellWords("box 'a b'c \"d 'e\" f\\ g\\\\"), ElementsAre("box", "a bc", "d 'e", "f g\\"));
  EXPECT_THAT(ShellWords("box '' '\\'\tx"), ElementsAre("box", "", "\\", "x"));
}

TEST(ShellWordsOf, a_line_end_with_what_is_being_typed) {
  EXPECT_THAT(ShellWords(""), ElementsAre(""));
  EXPECT_THAT(ShellWords("box "), ElementsAre("box", ""));
  EXPECT_THAT(ShellWords("box 'a b"), ElementsAre("box", "a b"));
  EXPECT_THAT(ShellWords("box a\\"), ElementsAre("box", "a\\"));
}

class Completion : public testing::Test {
 protected:
  Completion() {
    Option thing{"THING", "", "What"};
    thing.candidates = [](const GlobalOptions& global) -> Candidates {
      if (global.device == "damaged") throw std::runtime_error("damaged");
      return {{"oak:" + global.device, "A tree"}, {"elm", ""}, {"bad\nname", ""}};
    };
    cut_.Take<std::string>(thing);
    cut_.Take<std::vector<std::string>>(Path({"MORE", "", "What else"}));
    cut_.AddCommand("deep", "Cuts deep", "");
    commands_.push_back(std::move(cut_));
    commands_.emplace_back("wait", "Waits", "wait");
  }

  // The candidates for the last word, and "/" for names of files.
  std::vector<std::string> After(const std::vector<std::string>& words) const {
    GlobalOptions global;
    const Offer offer = OfferFor(DescribeProgram(commands_, global), global, words);
    std::vector<std::string> texts;
    for (const Candidate& candidate : offer.candidates) texts.push_back(candidate.text);
    if (offer.files) texts.emplace_back("/");
    return texts;
  }

  Command cut_{"cut", "Cuts", "cut"};
  const bool& fine_ = cut_.Take<bool>({"--fine", "", "Fine"});
  const std::string& how_ = cut_.Take<std::string>({"--how", "H", "How", {"across", "along"}});
  const unsigned& times_ = cut_.Take<unsigned>({"--times", "N", "Times", {}, false, 3});
  Commands commands_;
};

TEST_F(Completion, commands_come_first) {
  EXPECT_THAT(After({""}), ElementsAre("cut", "wait"));
  EXPECT_THAT(After({"--quiet", "c"}), ElementsAre("cut"));
  EXPECT_THAT(After({"--device", "cut", "w"}), ElementsAre("wait")) << "a value is no command";
  EXPECT_THAT(After({"frob", ""}), IsEmpty());
}

TEST_F(Completion, options_are_the_commands_and_the_programs_each_once) {
  EXPECT_THAT(After({"--v"}), ElementsAre("--version"));
  EXPECT_THAT(After({"cut", "-"}), ElementsAre("--help", "--fine", "--how", "--times", "--device", "--plugin",
                                               "--trace", "--quiet", "--version"));
  EXPECT_THAT(After({"wait", "--f"}), IsEmpty());
}

TEST_F(Completion, values_follow_their_option) {
  EXPECT_THAT(After({"cut", "--how", "a"}), ElementsAre("across", "along"));
  EXPECT_THAT(After({"cut", "--how=al"}), ElementsAre("--how=along"));
  EXPECT_THAT(After({"cut", "--how", "--"}), IsEmpty()) << "a value, whatever it begins with";
  EXPECT_THAT(After({"cut", "--times", ""}), IsEmpty());
  EXPECT_THAT(After({"--device", ""}), ElementsAre("/"));
  EXPECT_THAT(After({"cut", "--device=x"}), ElementsAre("/"));
}

TEST_F(Completion, arguments_are_what_the_command_says_of_the_device_that_the_line_names) {
  EXPECT_THAT(After({"--device", "d", "cut", ""}), ElementsAre("oak:d", "elm", "deep"));
  EXPECT_THAT(After({"cut", "--device=e", "oak:"}), ElementsAre("oak:e"));
  EXPECT_THAT(After({"cut", "elm", ""}), ElementsAre("/"));
  EXPECT_THAT(After({"cut", "elm", "x", "y", ""}), ElementsAre("/")) << "the last one repeats";
  EXPECT_THAT(After({"cut", "--", "-"}), IsEmpty()) << "no option any more";
  EXPECT_THAT(After({"wait", ""}), IsEmpty());
}

TEST_F(Completion, a_damaged_device_has_none) { EXPECT_THAT(After({"--device", "damaged", "cut", "e"}), IsEmpty()); }

TEST(Commands, whatever_is_named_as_a_file_is_completed_as_one) {
  for (const Command& command : AllCommands()) {
    std::vector<Option> all = command.facts().options;
    all.insert(all.end(), command.facts().arguments.begin(), command.facts().arguments.end());
    for (const Option& option : all) {
      const std::string kind = option.value.empty() ? option.name : option.value;
      const bool named = kind.find("DIR") != std::string::npos || kind.find("PATH") != std::string::npos ||
                         kind == "FILE" || kind == "LOG" || kind == "PACKAGE" || kind == "NEW";
      EXPECT_TRUE(option.is_path || !named) << command.facts().name << " " << option.name;
    }
  }
}

}  // namespace
}  // namespace orvelbox
