// What all commands have in common: help with an example, JSON from every listing, quiet on request.
#include <nlohmann/json.hpp>

#include "platform/host/json.h"
#include "platform/host/log_file.h"
#include "platform/host/package_store.h"
#include "tests/host/machine.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

class MannersE2e : public Desk {
 protected:
  void Register() const {
    host::Package package;
    package.id = "a";
    package.version = "1\xff";
    package.type = "opk";
    package.root = "/opt/usr/globalapps/a";
    package.main_app_id = "a.main";
    package.applications.push_back({"a.main", "ui-application", "dotnet-inhouse", "x", {{"k", "v"}}});
    package.privileges = {"p"};
    host::PackageStore(device_.Database(), host::PackageStore::Mode::kReadWrite).Put(package);
    support::WriteFile(device_.OnDesk(package.root) / "orvel-manifest.xml", ManifestText("a", "1"));
  }

  host::Json Json(const std::vector<std::string>& arguments) const {
    return host::ParseJson(RunExpecting(0, arguments).out);
  }

  // The commands that the help lists, in its groups.
  std::vector<std::string> Commands() const {
    std::vector<std::string> commands;
    bool listed = false;
    for (const std::string& line : support::Lines(RunExpecting(0, {"--help"}).out)) {
      listed = line == "Packages:" || (listed && line.substr(0, 8) != "A packag");
      if (listed && line.substr(0, 2) == "  ") commands.push_back(line.substr(2, line.find(' ', 2) - 2));
    }
    return commands;
  }
};

TEST_F(MannersE2e, help_tells_each_command_in_one_short_line) {
  for (const std::string& line : support::Lines(Run({}).err)) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_THAT(Run({}).err, AllOf(HasSubstr("\nPackages:\n  install "), HasSubstr("\nHooks:\n")));
}

TEST_F(MannersE2e, every_command_has_help_with_an_example_of_itself) {
  const std::vector<std::string> commands = Commands();
  EXPECT_GT(commands.size(), 10U);
  for (const std::string& command : commands) {
    EXPECT_THAT(RunExpecting(0, {command, "--help"}).out, HasSubstr("\nExample: orvelbox " + command)) << command;
  }
  EXPECT_THAT(RunExpecting(0, {"cache", "verify", "--help"}).out, HasSubstr("Example: orvelbox cache verify"));
}

TEST_F(MannersE2e, list_and_show_are_told_as_json) {
  EXPECT_EQ(Json({"list", "--json"}), host::Json::array());
  Register();
  EXPECT_EQ(Json({"list", "--json"})[0]["root"], "/opt/usr/globalapps/a");
  const auto shown = Json({"show", "--json", "a"});
  EXPECT_EQ(shown["version"], "1\xef\xbf\xbd") << "what is no UTF-8";
  EXPECT_EQ(shown["privileges"][0], "p");
  EXPECT_EQ(shown["applications"][0]["metadata"][0]["value"], "v");
}

TEST_F(MannersE2e, caches_are_told_as_json) {
  support::WriteFile(OnDesk("/opt/usr/home/owner/share/dotnet/TPA.txt"), "[START]:/a:/b[END]");
  std::filesystem::remove(OnDesk("/opt/usr/home/owner/share/dotnet/CoBA.txt"));
  const auto json = Json({"cache", "--json"});
  EXPECT_EQ(json["TPA.txt"]["entries"], host::Json({"/a", "/b"}));
  EXPECT_EQ(json["TPA.txt"]["state"], "sound");
  EXPECT_EQ(json["CoBA.txt"]["state"], "missing");
}

TEST_F(MannersE2e, the_log_is_told_as_one_json_object_a_record) {
  host::AppendLogRecord(device_.Log(), 'D', "T", "quiet");
  host::AppendLogRecord(device_.Log(), 'E', "T", "\x1b[31mloud\x1b[0m");
  const auto record = Json({"log", "--json", "--priority", "E"});
  EXPECT_EQ(record["text"], "\x1b[31mloud\x1b[0m");
  EXPECT_EQ(record["priority"], "E");
}

TEST_F(MannersE2e, json_has_no_byte_that_a_terminal_might_obey) {
  host::AppendLogRecord(device_.Log(), 'E', "T", "\x1b[31m \xc2\x9b \x7f");
  const std::string out = RunExpecting(0, {"log", "--json"}).out;
  for (const char byte : out.substr(0, out.size() - 1)) EXPECT_TRUE(byte >= ' ' && byte < '\x7f') << int{byte};
}

TEST_F(MannersE2e, quiet_leaves_only_complaints) {
  Register();
  const Result done = RunExpecting(0, {"--quiet", "--device", dir_ / "new", "init"});
  EXPECT_EQ(done.out + done.err, "");
  const Result refused = RunExpecting(1, {"show", "stranger", "--quiet"});
  EXPECT_EQ(refused.out, "");
  EXPECT_THAT(refused.err, HasSubstr("stranger: not installed"));
}

class QuietHooksE2e : public HookDesk {};

TEST_F(QuietHooksE2e, quiet_drops_what_the_plug_in_prints) {
  const Result result = RunExpecting(0, {"--quiet", "install", MakePackage("a", ManifestText("a", "1"))});
  EXPECT_THAT(result.out + result.err, IsEmpty());
  EXPECT_EQ(RunExpecting(0, {"list"}).out, "a  1  /opt/usr/globalapps/a\n");
}

// A machine where the kernel refuses namespaces, so that root works in place.
class InPlaceE2e : public MachineDesk {
 protected:
  // Checks what the command writes to standard error there. It must succeed.
  void ExpectErrors(const std::string& expected, const std::vector<std::string>& arguments) const {
    support::InFreshProcess([&] {
      machine::EnterEmptied();
      machine::RefuseNamespaces();
      EXPECT_EQ(RunExpecting(0, arguments).err, expected);
    });
  }
  std::string Package() const { return MakePackage("a", ManifestText("a", "1")); }
};

TEST_F(InPlaceE2e, a_command_says_once_that_it_works_in_place) {
  ExpectErrors(support::kInPlaceNotice, {"test", Package()});
}

TEST_F(InPlaceE2e, quiet_does_not_say_it) {
  ExpectErrors("", {"--quiet", "test", Package()});
  ExpectErrors("", {"--quiet", "install", Package()});
}

}  // namespace
}  // namespace e2e
