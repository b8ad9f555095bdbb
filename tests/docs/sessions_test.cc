// The sessions in README.md and docs/, run as a reader would run them.
#include "tests/docs/sessions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <stdexcept>

#include "platform/host/fixed_paths.h"
#include "tests/support/child.h"
#include "tests/support/command.h"
#include "tests/support/files.h"

namespace docs {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> Documents() {
  std::vector<std::string> documents = {"README.md", "CONTRIBUTING.md"};
  for (const std::string& name : support::NamesIn(SOURCE_DIRECTORY "/docs")) {
    if (fs::path(name).extension() == ".md") documents.push_back("docs/" + name);
  }
  return documents;
}

std::string Text(const std::string& document) { return support::ReadFile(SOURCE_DIRECTORY "/" + document); }

class DocumentSessions : public testing::TestWithParam<std::string> {
 protected:
  // Runs all commands in one shell, in a directory with a link to the build as in the sources.
  void Run(const std::vector<Command>& commands) const {
    fs::create_directories(directory_ / "desk/build");
    fs::create_directory_symlink(BUILD_DIRECTORY, directory_ / "desk/build/release");
    fs::create_directories(directory_ / "results");
    support::WriteFile(directory_ / "script", Script(commands));
    support::OutputOf("cd '" + (directory_ / "desk") + "' && env -u ORVELBOX_DEVICE HOME='" + (directory_ / "home") +
                      "' TMPDIR='" + directory_.path().string() + "' timeout 100 bash --norc ../script 2>&1");
  }

  // The output of the command at `place` of this kind. Documents show it as it is on a machine with namespaces.
  std::string Result(std::size_t place, const std::string& kind) const {
    const fs::path file = directory_ / ("results/" + std::to_string(place) + kind);
    return fs::exists(file) ? Without(support::InPlaceNoticeHere(), support::ReadFile(file)) : "it was not run";
  }

 private:
  static std::string Without(const std::string& part, std::string text) {
    const std::size_t at = text.find(part);
    return at == std::string::npos ? text : text.erase(at, part.size());
  }

  static std::string Script(const std::vector<Command>& commands) {
    std::string script = "results=$(cd .. && pwd)/results\n";
    for (std::size_t place = 0; place < commands.size(); ++place) {
      const std::string result = "\"$results\"/" + std::to_string(place);
      script += "{ " + commands[place].text + "\n} > " + result + ".out 2>&1\necho $? > " + result + ".status\n";
    }
    return script;
  }

  support::TempDir directory_;
};

TEST_P(DocumentSessions, end_and_print_as_they_are_shown) {
  const std::vector<Command> commands = ReadSessions(Text(GetParam()));
  std::string reason;
  if (!commands.empty() && host::AvailableFixedPathsMethod(&reason) == host::FixedPathsMethod::kNone) {
    GTEST_SKIP() << reason;
  }
  Run(commands);
  for (std::size_t place = 0; place < commands.size(); ++place) {
    const Command& command = commands[place];
    const std::string where = GetParam() + ":" + std::to_string(command.line) + ": " + command.text;
    const std::string output = Result(place, ".out");
    EXPECT_EQ(Result(place, ".status"), std::to_string(command.status) + "\n") << where << "\n" << output;
    EXPECT_TRUE(!command.shows_output || Matches(output, command.output)) << where << "\n" << output;
  }
}

std::string NameOf(const testing::TestParamInfo<std::string>& info) {
  std::string name = fs::path(info.param).stem();
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Documents, DocumentSessions, testing::ValuesIn(Documents()), NameOf);

// The names of the targets after "make " in the document.
std::vector<std::string> MakeTargets(const std::string& text) {
  std::vector<std::string> targets;
  const std::regex pattern("(?:`|    )make ([a-z][a-z-]*)");
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match) {
    targets.push_back((*match)[1]);
  }
  return targets;
}

TEST(DocumentCommands, every_make_target_that_is_named_is_there) {
  const std::string makefile = "\n" + support::ReadFile(SOURCE_DIRECTORY "/Makefile");
  std::size_t named = 0;
  for (const std::string& document : Documents()) {
    for (const std::string& target : MakeTargets(Text(document))) {
      EXPECT_THAT(makefile, testing::HasSubstr("\n" + target + ":")) << document;
      ++named;
    }
  }
  EXPECT_GT(named, 5U);
}

// The text of all sources of the plug-in and its utilities.
std::string Sources() {
  std::string text;
  for (const char* folder : {"base", "plugin", "util", "quarnel_util"}) {
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(SOURCE_DIRECTORY) / folder)) {
      if (entry.is_regular_file()) text += support::ReadFile(entry.path());
    }
  }
  return text;
}

TEST(DocumentCommands, every_log_line_under_troubleshooting_is_one_of_the_plug_ins) {
  const std::string text = Text("docs/troubleshooting.md");
  const std::string sources = Sources();
  const std::regex heading("\n## `([^`]*)`");
  std::size_t lines = 0;
  for (std::sregex_iterator match(text.begin(), text.end(), heading), end; match != end; ++match, ++lines) {
    EXPECT_THAT(sources, testing::HasSubstr((*match)[1].str()));
  }
  EXPECT_GT(lines, 10U);
}

TEST(Sessions, commands_have_their_lines_inputs_statuses_and_outputs) {
  const std::vector<Command> commands = ReadSessions(
      "A\n<!-- before: mkdir x -->\n```console\n$ a <<'END'\nb\n$ c\nEND\n$ d # exit status 7\ne\n\nf\n```\n"
      "```text\n$ no\n```\n```console\n$ g\n```\n");
  ASSERT_EQ(commands.size(), 4U);
  EXPECT_EQ(commands[0].text, "mkdir x");
  EXPECT_EQ(commands[0].line, 2U);
  EXPECT_EQ(commands[1].text, "a <<'END'\nb\n$ c\nEND");
  EXPECT_FALSE(commands[1].shows_output);
  EXPECT_EQ(commands[2].line, 8U);
  EXPECT_EQ(commands[2].status, 7);
  EXPECT_EQ(commands[2].output, "e\n\nf\n");
  EXPECT_EQ(commands[3].text, "g");
}

TEST(Sessions, what_would_not_be_run_is_refused) {
  for (const char* text :
       {"```sh\nmake\n```\n", "```\nmake\n```\n", "```console\nmake\n```\n", "```console\n$ make\n"}) {
    EXPECT_THROW(ReadSessions(text), std::runtime_error) << text;
  }
}

TEST(Sessions, outputs_match_word_by_word_but_where_anything_goes) {
  EXPECT_TRUE(Matches("a.b\nc\n", "a.b\nc\n"));
  EXPECT_TRUE(Matches("a 17 b\n", "a … b\n"));
  EXPECT_TRUE(Matches("a\nx\ny\nb\n", "a\n…\nb\n"));
  EXPECT_TRUE(Matches("a\nb\n", "a\n…\nb\n"));
  EXPECT_FALSE(Matches("axb\nc\n", "a.b\nc\n"));
  EXPECT_FALSE(Matches("a\nb\nc\n", "a\nb\n"));
  EXPECT_FALSE(Matches("a\n17\nb\n", "a … b\n"));
  EXPECT_FALSE(Matches("", "a\n"));
}

}  // namespace
}  // namespace docs
