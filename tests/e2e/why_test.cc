// orvelbox why and cache verify on a device with a history.
#include <nlohmann/json.hpp>

#include "platform/host/json.h"
#include "platform/host/package_store.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

constexpr const char* kShop = "/opt/usr/globalapps/org.example.shop/";
constexpr const char* kTime = "20[0-9-]*T[0-9:.]*Z";

class WhyE2e : public HookDesk {
 protected:
  void InstallShop() const { HookDesk::InstallShop({{"res/Own.dll", "z"}}); }
};

TEST_F(WhyE2e, a_package_is_told_with_time_and_reason) {
  InstallShop();
  const std::string out = RunExpecting(0, {"why", "org.example.shop"}).out;
  EXPECT_THAT(out, StartsWith("org.example.shop 1 (/opt/usr/globalapps/org.example.shop)\n"));
  EXPECT_THAT(out, ContainsRegex(std::string("removed   bin/Json.dll  ") + kTime +
                                 "  /usr/share/dotnet.orvel/framework/Json.dll"));
  EXPECT_THAT(out, ContainsRegex(std::string("reported  bin/Part.dll  ") + kTime +
                                 "  /opt/usr/globalapps/org.example.component/shared/res/Part.dll +kept, the copy"));
  EXPECT_THAT(out, Not(HasSubstr("Own.dll")));
}

TEST_F(WhyE2e, a_file_is_found_by_every_path_that_it_has) {
  InstallShop();
  const std::string dll = std::string(kShop) + "bin/Json.dll";
  for (const std::string& path :
       {dll, dll + "_deleted", OnDesk(dll), OnDesk(dll) + "_deleted", OnDesk(kShop) + "bin/"}) {
    EXPECT_THAT(RunExpecting(0, {"why", path}).out, HasSubstr("removed")) << path;
  }
  EXPECT_THAT(RunExpecting(0, {"why", dll}).out, Not(HasSubstr("Part.dll")));
}

TEST_F(WhyE2e, a_dll_that_is_there_is_explained_by_the_catalogues_of_today) {
  InstallShop();
  const std::string own = std::string(kShop) + "res/Own.dll";
  EXPECT_THAT(RunExpecting(0, {"why", own}).out, ContainsRegex("there  res/Own.dll +no catalogue holds its name"));
  AddPlatformFile("netcoreapp/Own.dll");
  EXPECT_THAT(RunExpecting(0, {"why", own}).out,
              ContainsRegex("/usr/share/dotnet.orvel/netcoreapp/Own.dll  an install now would remove it"));
}

TEST_F(WhyE2e, what_changed_since_is_noted) {
  InstallShop();
  std::filesystem::remove(OnDesk("/usr/share/dotnet.orvel/framework/Json.dll"));
  EXPECT_THAT(RunExpecting(0, {"why", "org.example.shop"}).out, HasSubstr("an install now would keep the DLL"));
  std::filesystem::remove(OnDesk(std::string(kShop) + "bin/Json.dll_deleted"));
  EXPECT_THAT(RunExpecting(0, {"why", "org.example.shop"}).out, HasSubstr("there is no information file any more"));
}

TEST_F(WhyE2e, json_holds_the_same) {
  InstallShop();
  const auto json = host::ParseJson(RunExpecting(0, {"why", "--json", "org.example.shop"}).out);
  EXPECT_FALSE(json.contains("unread_from"));
  ASSERT_EQ(json["dlls"].size(), 2U);
  EXPECT_EQ(json["dlls"][0]["path"], "bin/Json.dll");
  EXPECT_EQ(json["dlls"][0]["fate"], "removed");
  EXPECT_EQ(json["dlls"][0]["information_file"], true);
  EXPECT_EQ(json["dlls"][1]["fate"], "reported");
}

TEST_F(WhyE2e, the_information_file_speaks_where_the_log_is_gone) {
  InstallShop();
  support::WriteFile(device_.Log(), "");
  const auto json = host::ParseJson(RunExpecting(0, {"why", "--json", "org.example.shop"}).out);
  ASSERT_EQ(json["dlls"].size(), 1U);
  EXPECT_EQ(json["dlls"][0]["time"], nullptr);
  EXPECT_EQ(json["dlls"][0]["origin"], "/usr/share/dotnet.orvel/framework/Json.dll");
}

TEST_F(WhyE2e, nothing_known_is_said_and_strangers_are_named) {
  RunExpecting(0, {"install", MakePackage("a", ManifestText("org.example.a", "1"))});
  EXPECT_THAT(RunExpecting(0, {"why", "org.example.a"}).out, HasSubstr("nothing was removed from the package"));
  EXPECT_THAT(RunExpecting(0, {"why", "/opt/usr/globalapps/org.example.a/bin/No.dll"}).out,
              HasSubstr("nothing is known of bin/No.dll"));
  EXPECT_THAT(RunExpecting(1, {"why", "stranger"}).err, HasSubstr("stranger: not installed; "));
  EXPECT_THAT(RunExpecting(1, {"why", "/opt/usr/globalapps/stranger/X.dll"}).err,
              HasSubstr("belongs to no installed package; see what is with: orvelbox list"));
}

TEST_F(WhyE2e, a_dll_that_is_there_is_not_called_removed_where_the_log_breaks_off) {
  InstallShop();
  const std::string dll = std::string(kShop) + "bin/Json.dll";
  const std::string log = support::ReadFile(device_.Log());
  support::WriteFile(device_.Log(), log.substr(0, log.find('\n', log.find("> \\e[31mDuplicated : " + dll)) + 1));
  std::filesystem::remove(OnDesk(dll + "_deleted"));
  support::WriteFile(OnDesk(dll), "x");
  EXPECT_THAT(RunExpecting(0, {"why", "org.example.shop"}).out,
              ContainsRegex("reported  bin/Json.dll .*there, the log does not tell that it was removed"));
}

TEST_F(WhyE2e, a_log_that_is_not_read_to_its_end_is_said_to_be_one) {
  RunExpecting(0, {"install", MakePackage("a", ManifestText("org.example.a", "1"))});
  std::string log;
  for (int i = 0; i < 400; ++i) log += "morvath: f(1) > \x1b[31m" + std::string(60000, 'x') + "\x1b[0m\n";
  support::WriteFile(device_.Log(), log);
  EXPECT_THAT(RunExpecting(0, {"why", "org.example.a"}).out,
              AllOf(HasSubstr("nothing is known to be removed"), ContainsRegex("the log was read up to line [0-9]+")));
  EXPECT_GT(host::ParseJson(RunExpecting(0, {"why", "--json", "org.example.a"}).out)["unread_from"], 100);
}

TEST_F(WhyE2e, caches_that_the_plug_in_wrote_are_sound_until_a_file_is_gone) {
  InstallShop();
  EXPECT_EQ(RunExpecting(0, {"cache", "verify"}).out, "both cache files are sound\n");
  EXPECT_EQ(RunExpecting(0, {"cache", "verify", "--json"}).out, "{\"sound\":true,\"findings\":[]}\n");
  std::filesystem::remove(OnDesk("/opt/usr/globalapps/org.example.component/shared/res/Part.dll"));
  const Result result = RunExpecting(1, {"cache", "verify"});
  EXPECT_THAT(result.out, AllOf(HasSubstr("Part.dll is gone; "), HasSubstr("orvelbox clean org.example.component\n")));
  EXPECT_EQ(host::ParseJson(RunExpecting(1, {"cache", "verify", "--json"}).out)["findings"][0]["kind"], "gone");
  EXPECT_EQ(RunExpecting(1, {"--quiet", "cache", "verify"}).out, "");
}

}  // namespace
}  // namespace e2e
