// The verdicts of orvelbox check agree with the results of an install or upgrade.
#include <nlohmann/json.hpp>
#include <random>

#include "platform/host/json.h"
#include "tests/support/orvelbox_desk.h"
#include "tests/support/uris.h"
#include "tests/support/zip.h"

namespace e2e {
namespace {

// A package, and the content of the device.
struct Case {
  const char* name;
  std::vector<std::string> platform;
  std::map<std::string, std::string> files;
  std::string application;  // elements for the application
  std::string package;      // elements for the manifest
};

class CheckAgreesE2e : public HookDesk, public testing::WithParamInterface<Case> {
 protected:
  // The verdict of check on each DLL.
  std::map<std::string, std::string> Foretold(const std::string& package, host::Json& checked) const {
    const Result check = Run({"check", "--format", "json", package});
    checked = host::ParseJson(check.out);
    EXPECT_EQ(check.status, checked["duplicates"] == 0 ? 0 : 1) << check.err;
    std::map<std::string, std::string> verdicts;
    for (const auto& dll : checked["dlls"]) verdicts[dll["path"]] = dll["verdict"];
    return verdicts;
  }

  std::string MakeArchive(const std::string& manifest, const std::map<std::string, std::string>& files) const {
    std::vector<support::ZipEntry> entries = {{"orvel-manifest.xml", manifest}};
    for (const auto& [path, content] : files) entries.push_back({path, content});
    support::WriteFile(dir_ / "shop.opk", support::ZipOf(entries));
    return dir_ / "shop.opk";
  }

  // The verdicts that follow from the result of the install.
  std::map<std::string, std::string> Outcome(const Result& install, const host::Json& checked) const {
    const std::string root = OnDesk("/opt/usr/globalapps/org.example.shop/");
    std::map<std::string, std::string> verdicts;
    for (const auto& dll : checked["dlls"]) {
      const std::string path = dll["path"];
      std::string verdict = "kept";
      if (support::IsThere(root + path + "_deleted")) verdict = "removed";
      if (install.out.find("kept     " + path + ": duplicates ") != std::string::npos) verdict = "reported";
      EXPECT_EQ(support::IsThere(root + path), verdict != "removed") << path;
      verdicts[path] = verdict;
    }
    return verdicts;
  }
};

TEST_P(CheckAgreesE2e, with_what_an_install_does) {
  RunExpecting(0, {"install", MakePackage("component", ManifestText("org.example.component", "1", CobaMetadata()),
                                          {{"shared/res/Component.dll", "c"}, {"shared/res/Shared.dll", "c"}})});
  for (const std::string& file : GetParam().platform) AddPlatformFile(file);
  const std::string manifest = ManifestText("org.example.shop", "1", GetParam().application, GetParam().package);
  const std::string package = MakePackage("shop", manifest, GetParam().files);
  // By its name the link would be a duplicate, but links are kept.
  AddPlatformFile("framework/Linked.dll");
  std::filesystem::create_symlink("orvel-manifest.xml", package + "/Linked.dll");

  host::Json checked;
  const std::map<std::string, std::string> predicted = Foretold(package, checked);
  std::map<std::string, std::string> without_link = predicted;
  without_link.erase("Linked.dll");
  host::Json archived;
  EXPECT_EQ(Foretold(MakeArchive(manifest, GetParam().files), archived), without_link);

  const bool fails = checked["debugging"] == true && checked["duplicates"] != 0;
  const Result install = RunExpecting(fails ? 1 : 0, {"install", package});
  if (!fails) {
    EXPECT_EQ(Outcome(install, checked), predicted) << install.out;
  }
}

std::map<std::string, std::string> AllOverThePackage(const std::string& dll) {
  return {{dll, ""}, {"bin/" + dll, ""}, {"lib/" + dll, ""}, {"res/d.pc/" + dll, ""}, {"bin/Own.dll", ""}};
}

INSTANTIATE_TEST_SUITE_P(
    packages, CheckAgreesE2e,
    testing::Values(
        Case{"nothing_provided", {}, {{"bin/Own.dll", ""}}, "", ""},
        Case{"core", {"netcoreapp/X.dll"}, AllOverThePackage("X.dll"), "", ""},
        Case{"core_has_no_subdirectories", {"netcoreapp/sub/X.dll"}, AllOverThePackage("X.dll"), "", ""},
        Case{"dpc_shadows_the_component", {"d.pc/a/Component.dll"}, AllOverThePackage("Component.dll"), "", ""},
        Case{"dpc_two_levels_down", {"d.pc/a/b/X.dll"}, AllOverThePackage("X.dll"), "", ""},
        Case{"framework_before_dpc", {"framework/X.dll", "d.pc/X.dll"}, AllOverThePackage("X.dll"), "", ""},
        Case{"tv_api_without_privilege", {"tvappapi/X.dll"}, AllOverThePackage("X.dll"), "", ""},
        Case{"tv_api_with_privilege",
             {"tvappapi/X.dll"},
             AllOverThePackage("X.dll"),
             "",
             std::string("<privileges><privilege>") + support::kPlatformPrivilege + "</privilege></privileges>"},
        Case{"own_library_twice", {}, AllOverThePackage("Mine.dll"), "", ""},
        Case{"component", {}, AllOverThePackage("Component.dll"), "", ""},
        Case{"a_component_itself",
             {},
             {{"shared/res/Shared.dll", ""}, {"shared/res/New.dll", ""}, {"bin/New.dll", ""}, {"bin/Own.dll", ""}},
             CobaMetadata(),
             ""},
        Case{"upper_case", {"framework/X.DLL", "framework/Y.dll"}, {{"bin/X.DLL", ""}, {"bin/y.dll", ""}}, "", ""},
        Case{"at_the_depth_that_is_looked_at",
             {"framework/X.dll"},
             {{"1/2/3/4/5/6/7/8/9/X.dll", ""}, {"1/2/3/4/5/6/7/8/9/10/X.dll", ""}, {".sac_symlink/X.dll", ""}},
             "",
             ""},
        Case{"under_debugging", {"framework/X.dll"}, AllOverThePackage("X.dll"), "", DebuggingPrivileges()},
        Case{"under_debugging_without_duplicates", {}, {{"bin/Own.dll", ""}}, "", DebuggingPrivileges()}),
    [](const auto& parameters) { return parameters.param.name; });

// A random tree with names that matter to the rules.
Case RandomTree(unsigned seed) {
  std::mt19937 random(seed);
  const auto any = [&](const std::vector<std::string>& all) { return all[random() % all.size()]; };
  const std::vector<std::string> dlls = {"A.dll", "B.dll", "C.dll", "D.DLL", "d.dll", "Component.dll", "E.dll"};
  const std::vector<std::string> directories = {"bin",  "lib",          "shared",        "res",
                                                "d.pc", ".sac_symlink", "x.sac_symlinky"};
  Case tree{"random", {}, {}, random() % 2 == 0 ? CobaMetadata() : "", ""};
  for (int i = 0; i < 5; ++i) {
    tree.platform.push_back(any({"netcoreapp/", "framework/", "d.pc/", "d.pc/a/", "tvappapi/"}) + any(dlls));
  }
  for (int i = 0; i < 40; ++i) {
    std::string path;
    for (auto depth = random() % 12; depth > 0; --depth) path += any(directories) + "/";
    tree.files[path + any(dlls)] = "content";
  }
  return tree;
}

INSTANTIATE_TEST_SUITE_P(random, CheckAgreesE2e,
                         testing::Values(RandomTree(1), RandomTree(2), RandomTree(3), RandomTree(4), RandomTree(5)),
                         [](const auto& parameters) { return "tree_" + std::to_string(parameters.index); });

class CheckLinksE2e : public HookDesk {};

// The plug-in opens these directories by path, so links are followed.
TEST_F(CheckLinksE2e, linked_directories_provide_what_they_lead_to) {
  AddPlatformFile("real/C.dll");
  const std::string core = OnDesk("/usr/share/dotnet.orvel/netcoreapp");
  std::filesystem::remove(core);
  std::filesystem::create_symlink("real", core);
  const std::string package = MakePackage("shop", ManifestText("org.example.shop", "1"),
                                          {{"real/Mine.dll", ""}, {"bin/Mine.dll", ""}, {"bin/C.dll", ""}});
  std::filesystem::create_symlink("real", package + "/lib");
  const auto checked = host::ParseJson(RunExpecting(1, {"check", "--format", "json", package}).out);
  std::map<std::string, std::string> verdicts;
  for (const auto& dll : checked["dlls"]) verdicts[dll["path"]] = dll["verdict"];
  EXPECT_EQ(verdicts, (std::map<std::string, std::string>{
                          {"bin/C.dll", "removed"}, {"bin/Mine.dll", "reported"}, {"real/Mine.dll", "reported"}}));
  const std::string said = RunExpecting(0, {"install", package}).out;
  EXPECT_THAT(said, testing::AllOf(HasSubstr("removed  bin/C.dll"), HasSubstr("kept     bin/Mine.dll: duplicates "),
                                   HasSubstr("kept     real/Mine.dll: duplicates ")));
}

TEST_F(CheckLinksE2e, directories_may_be_named_with_a_slash_at_the_end) {
  AddPlatformFile("framework/X.dll");
  const std::string package = MakePackage("shop", ManifestText("org.example.shop", "1"), {{"bin/X.dll", ""}});
  const std::string platform = OnDesk("/usr/share/dotnet.orvel");
  RunExpecting(1, {"check", "--platform", platform + "/", package + "/"});
}

class CheckUpgradeE2e : public HookDesk {};

TEST_F(CheckUpgradeE2e, an_installed_package_is_checked_as_its_upgrade) {
  const std::string first = MakePackage("first", ManifestText("org.example.a", "1", CobaMetadata()),
                                        {{"shared/res/A.dll", "a"}, {"bin/A.dll", "a"}});
  const std::string second = MakePackage("second", ManifestText("org.example.a", "2"), {{"bin/A.dll", "a"}});
  RunExpecting(0, {"install", first});
  RunExpecting(0, {"check", second});  // the shared assemblies of the replaced version do not count
  EXPECT_THAT(RunExpecting(0, {"upgrade", second}).out, Not(HasSubstr("duplicates")));
}

}  // namespace
}  // namespace e2e
