// orvelbox test: packages that leave nothing behind, plug-ins that do, and what remains on the desk.
#include <nlohmann/json.hpp>

#include "platform/host/json.h"
#include "tests/support/orvelbox_desk.h"
#include "tests/support/zip.h"

namespace e2e {
namespace {

class PackageLifeE2e : public HookDesk {
 protected:
  // Tests a package with a separate temporary directory, which must be empty afterwards. The device must be unchanged.
  Result Test(int status, std::vector<std::string> arguments) const {
    std::filesystem::create_directory(dir_ / "tmp");
    arguments.insert(arguments.begin(), "test");
    const auto before = DeviceState();
    Result result = RunExpecting(status, arguments);
    EXPECT_EQ(DeviceState(), before);
    EXPECT_THAT(support::NamesIn(dir_ / "tmp"), IsEmpty());
    return result;
  }

  void SetUp() override {
    HookDesk::SetUp();
    environment_["TMPDIR"] = dir_ / "tmp";
  }

  std::string Package(const std::string& id) const { return MakePackage(id, ManifestText(id, "1")); }
};

std::vector<std::string> StepsOf(const host::Json& life) {
  std::vector<std::string> steps;
  for (const auto& step : life["steps"]) {
    EXPECT_EQ(step["problem"], nullptr);
    steps.push_back(step["step"]);
    for (const auto& difference : step["differences"]) steps.push_back(difference);
  }
  return steps;
}

TEST_F(PackageLifeE2e, a_package_with_duplicates_leaves_nothing_behind) {
  AddPlatformFile("framework/Json.dll");
  const std::string package = MakePackage("shop", ManifestText("org.example.shop", "1"), {{"bin/Json.dll", "x"}});
  const Result result = Test(0, {package});
  EXPECT_EQ(result.out, package +
                            ": lived through without a trace\n    install: done\n    clean: done\n    undo: done\n"
                            "    recover: done\n    upgrade: done\n    clean: done\n    recover: done\n"
                            "    uninstall: done\n");
  EXPECT_EQ(result.err, support::InPlaceNoticeHere());
}

TEST_F(PackageLifeE2e, a_component_lives_in_an_archive_and_is_upgraded_to_another) {
  support::WriteFile(dir_ / "one.opk",
                     support::ZipOf({{"orvel-manifest.xml", ManifestText("org.example.a", "1", CobaMetadata())},
                                     {"shared/res/A.dll", "a"}}));
  const std::string two = MakePackage("two", ManifestText("org.example.a", "2"), {{"bin/A.dll", "a"}});
  const auto life = host::ParseJson(Test(0, {"--json", dir_ / "one.opk", two}).out);
  EXPECT_EQ(life["sound"], true);
  EXPECT_THAT(StepsOf(life),
              ElementsAre("install", "clean", "undo", "recover", "upgrade", "clean", "recover", "uninstall"));
}

TEST_F(PackageLifeE2e, what_is_left_behind_is_named) {
  const auto life =
      host::ParseJson(Test(1, {"--json", "--plugin", MISBEHAVING_PLUGIN, Package("org.example.litter")}).out);
  EXPECT_EQ(life["sound"], false);
  EXPECT_THAT(StepsOf(life), ElementsAre("install", "clean", "undo", "recover", "upgrade", "clean", "recover",
                                         "uninstall", "+ /opt/usr/home/litter"));
}

TEST_F(PackageLifeE2e, what_an_event_changes_without_need_is_named_with_it) {
  const std::string out = Test(1, {"--plugin", MISBEHAVING_PLUGIN, Package("org.example.meddle")}).out;
  EXPECT_THAT(out, HasSubstr(": left traces, or failed; see the steps\n"));
  EXPECT_THAT(out, HasSubstr("    undo: done, but the device is not as it should be:\n"
                             "      ~ /opt/usr/home/owner/share/dotnet/TPA.txt\n"));
}

TEST_F(PackageLifeE2e, a_step_that_fails_ends_the_life_and_is_taken_back) {
  const Result result = Test(1, {"--plugin", MISBEHAVING_PLUGIN, Package("org.example.crash")});
  EXPECT_THAT(result.out, HasSubstr("    install: failed; what the plug-in said stands above\n"
                                    "    taking the install back: done\n"));
  EXPECT_THAT(result.err, HasSubstr("org.example.crash: install failed, INSTALL was killed by signal 11"));
}

TEST_F(PackageLifeE2e, a_platform_directory_takes_the_place_of_the_device) {
  support::WriteFile(dir_ / "tv/framework/Json.dll", "the platform's");
  const std::string package = MakePackage("a", ManifestText("a", "1", "", DebuggingPrivileges()), {{"Json.dll", "x"}});
  Test(0, {package});
  EXPECT_THAT(Test(1, {"--platform", dir_ / "tv", package}).err, HasSubstr("the package is under debugging"));
}

TEST_F(PackageLifeE2e, bad_input_is_one_line) {
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{dir_ / "nowhere"}, {"--platform", dir_ / "nowhere", Package("a")}}) {
    const Result result = Test(1, arguments);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("orvelbox: " + (dir_ / "nowhere") + ": no "));
  }
}

}  // namespace
}  // namespace e2e
