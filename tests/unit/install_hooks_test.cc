// INSTALL, UPGRADE and REMOVED.
#include "plugin/hooks.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

using HookFunction = int (*)(xmlDocPtr, const char*);

constexpr const char* kRoot = "/opt/usr/apps/pkg";
constexpr const char* kCopy = "/opt/usr/apps/pkg/bin/A.dll";
constexpr const char* kOrigin = "/usr/share/dotnet.orvel/framework/A.dll";
constexpr const char* kInstallLine = "### INSTALL : morvath : pkg\n";
// A package with one duplicate of a framework assembly.
void PutDuplicatingPackage(Platform& platform, const std::vector<std::string>& privileges = {}) {
  Package package = doubles::MakePackage("pkg", kRoot);
  package.privileges = privileges;
  platform.packages.push_back(package);
  WriteFile(kOrigin);
  WriteFile(kCopy);
}

Steps PassWithDuplicate() { return Pass(0, 1, DuplicateRemoved(kOrigin, kCopy)); }

DEVICE_TEST(Install, a_package_without_duplicates_is_installed) {
  platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
  WriteFile(kCopy);
  EXPECT_EQ(kInstallLine,
            StandardErrorOf([] { EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_INSTALL(DotnetManifest().get(), "pkg")); }));
  EXPECT_TRUE(Holds(platform, {Hook("INSTALL", {DotnetWalk(), Pass(0, 0)})}));
  EXPECT_TRUE(IsThere(kCopy));
  EXPECT_TRUE(aotStateUpgrade.empty());
}

DEVICE_TEST(Install, duplicates_do_not_fail_an_ordinary_package) {
  PutDuplicatingPackage(platform);
  EXPECT_EQ(std::string(kInstallLine) + DuplicateLine(kOrigin, kCopy),
            StandardErrorOf([] { EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_INSTALL(DotnetManifest().get(), "pkg")); }));
  EXPECT_TRUE(Holds(platform, {Hook("INSTALL", {DotnetWalk(), PassWithDuplicate(), NoPrivilege()})}));
  EXPECT_FALSE(IsThere(kCopy));
  EXPECT_EQ(1, platform.Alive());  // the filter
}

DEVICE_TEST(Install, duplicates_fail_a_package_under_debugging) {
  PutDuplicatingPackage(platform, {kDebuggingPrivilege});
  EXPECT_EQ(std::string(kInstallLine) + DuplicateLine(kOrigin, kCopy),
            StandardErrorOf([] { EXPECT_EQ(-1, PKGMGR_PARSER_PLUGIN_INSTALL(DotnetManifest().get(), "pkg")); }));
  EXPECT_TRUE(Holds(platform,
                    {Hook("INSTALL", {DotnetWalk(), PassWithDuplicate(), HavePrivilege(kDebuggingPrivilege),
                                      Plugin("PKGMGR_PARSER_PLUGIN_INSTALL")
                                          .Error("Duplicated DLL found. Please refer guide : %s", ORVEL_GUIDE_URL)})}));
  EXPECT_FALSE(IsThere(kCopy));
}

DEVICE_TEST(Install, a_package_under_debugging_without_duplicates_is_installed) {
  platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
  platform.packages[0].privileges = {kDebuggingPrivilege};
  StandardErrorOf([] { EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_INSTALL(DotnetManifest().get(), "pkg")); });
  EXPECT_TRUE(Holds(platform, {Hook("INSTALL", {DotnetWalk(), Pass(0, 0)})}));
}

DEVICE_TEST(Install, a_package_under_debugging_without_a_root_fails_like_one_with_duplicates) {
  Package package;
  package.id = "pkg";
  package.privileges = {kDebuggingPrivilege};
  platform.packages.push_back(package);
  EXPECT_EQ(std::string(kInstallLine) + "### INSTALL : morvath, pkgRoot is empty : pkg\n",
            StandardErrorOf([] { EXPECT_EQ(-1, PKGMGR_PARSER_PLUGIN_INSTALL(DotnetManifest().get(), "pkg")); }));
}

DEVICE_TEST(Install, a_second_install_of_the_same_package_succeeds_without_a_pass) {
  PutDuplicatingPackage(platform, {kDebuggingPrivilege});
  StandardErrorOf([] { PKGMGR_PARSER_PLUGIN_INSTALL(DotnetManifest().get(), "pkg"); });
  WriteFile(kCopy);
  platform.journal.clear();
  EXPECT_EQ(std::string(kInstallLine) + "### INSTALL : morvath, GAC already run for same pkgId : pkg\n",
            StandardErrorOf([] { EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_INSTALL(DotnetManifest().get(), "pkg")); }));
  EXPECT_TRUE(IsThere(kCopy));
  EXPECT_TRUE(Holds(
      platform, {Hook("INSTALL", {DotnetWalk(),
                                  TracedPlugin("int gac(const std::string&)",
                                               Plugin("gac").Info("GAC already run for same pkgId (%s)", "pkg"))})}));
}

struct ForwardingHook {
  HookFunction function;
  Steps (*frame)(const Steps&);
};

const ForwardingHook kForwardingHooks[] = {
    {PKGMGR_PARSER_PLUGIN_UPGRADE, [](const Steps& inside) { return Hook("UPGRADE", {Hook("INSTALL", {inside})}); }},
    {PKGMGR_PARSER_PLUGIN_REMOVED,
     [](const Steps& inside) { return Hook("REMOVED", {Hook("UPGRADE", {Hook("INSTALL", {inside})})}); }},
};

TEST(Upgrade, upgrade_and_removed_mark_the_package_and_install_it) {
  for (const ForwardingHook& hook : kForwardingHooks) {
    FreshOnDevice([&](Platform& platform) {
      PutDuplicatingPackage(platform);
      EXPECT_EQ(std::string(kInstallLine) + DuplicateLine(kOrigin, kCopy),
                StandardErrorOf([&] { EXPECT_EQ(0, hook.function(DotnetManifest().get(), "pkg")); }));
      EXPECT_TRUE(Holds(platform, hook.frame(Join({DotnetWalk(), PassWithDuplicate(), NoPrivilege()}))));
      EXPECT_EQ((Flags{{"pkg", true}}), aotStateUpgrade);
      EXPECT_TRUE(cacheStateUninstall.empty());
    });
  }
}

TEST(Upgrade, upgrade_and_removed_pass_on_the_failure_of_install) {
  for (const ForwardingHook& hook : kForwardingHooks) {
    FreshOnDevice([&](Platform& platform) {
      PutDuplicatingPackage(platform, {kDebuggingPrivilege});
      StandardErrorOf([&] { EXPECT_EQ(-1, hook.function(DotnetManifest().get(), "pkg")); });
      EXPECT_EQ((Flags{{"pkg", true}}), aotStateUpgrade);
    });
  }
}

TEST(Upgrade, another_kind_of_package_is_marked_as_well) {
  for (const ForwardingHook& hook : kForwardingHooks) {
    Fresh([&](Platform& platform) {
      EXPECT_EQ("### INSTALL : morvath, skip gac. it's not dotnet-inhouse app : pkg\n",
                StandardErrorOf([&] { EXPECT_EQ(0, hook.function(OtherManifest().get(), "pkg")); }));
      EXPECT_TRUE(Holds(platform, hook.frame(Join({OtherWalk(), NotInhouse("INSTALL")}))));
      EXPECT_EQ((Flags{{"pkg", true}}), aotStateUpgrade);
    });
  }
}

FRESH_TEST(Upgrade, a_package_with_a_null_manifest_is_marked_as_well) {
  StandardErrorOf([] { EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_UPGRADE(nullptr, "pkg")); });
  EXPECT_EQ((Flags{{"pkg", true}}), aotStateUpgrade);
}

}  // namespace
}  // namespace unit
