// What all hooks have in common: their entry and exit lines, the gate, the flag tables, null arguments, UNDO, and the
// loader restart.
#include "plugin/hooks.h"

#include "tests/support/unit_case.h"

namespace unit {
namespace {

using HookFunction = int (*)(xmlDocPtr, const char*);

struct GatedHook {
  HookFunction function;
  // The lines of the hook around those of the gate, inner hooks included.
  std::function<Steps(const Steps&)> frame;
  std::string gate;  // the event whose hook logs NOT-INHOUSE
};

Steps InstallFrame(const Steps& inside) { return Hook("INSTALL", {inside}); }

const GatedHook kGatedHooks[] = {
    {PKGMGR_PARSER_PLUGIN_INSTALL, InstallFrame, "INSTALL"},
    {PKGMGR_PARSER_PLUGIN_UPGRADE, [](const Steps& s) { return Hook("UPGRADE", {InstallFrame(s)}); }, "INSTALL"},
    {PKGMGR_PARSER_PLUGIN_REMOVED, [](const Steps& s) { return Hook("REMOVED", {Hook("UPGRADE", {InstallFrame(s)})}); },
     "INSTALL"},
    {PKGMGR_PARSER_PLUGIN_UNINSTALL, [](const Steps& s) { return Hook("UNINSTALL", {s}); }, "UNINSTALL"},
    {PKGMGR_PARSER_PLUGIN_CLEAN, [](const Steps& s) { return Hook("CLEAN", {s}); }, "CLEAN"},
    {PKGMGR_PARSER_PLUGIN_CLEANUP, [](const Steps& s) { return Hook("CLEANUP", {Hook("CLEAN", {s})}); }, "CLEAN"},
    {PKGMGR_PARSER_PLUGIN_UNDO, [](const Steps& s) { return Hook("UNDO", {s}); }, "UNDO"},
};

TEST(Hooks, the_flag_tables_are_empty_at_first) {
  EXPECT_TRUE(cacheStateUninstall.empty());
  EXPECT_TRUE(aotStateUpgrade.empty());
}

TEST(Hooks, a_null_manifest_is_refused_with_the_error_line_and_not_inhouse) {
  for (const GatedHook& hook : kGatedHooks) {
    Fresh([&](Platform& platform) {
      platform.packages.push_back(doubles::MakePackage("pkg", "/proc/nowhere/pkg"));
      StandardErrorOf([&] { EXPECT_EQ(0, hook.function(nullptr, "pkg")); });
      EXPECT_TRUE(Holds(platform, hook.frame(Join({Plugin("isAppDotnetInhouse").Error("xml provided is null"),
                                                   NotInhouse(hook.gate)}))));
      EXPECT_TRUE(cacheStateUninstall.empty());
    });
  }
}

TEST(Hooks, another_kind_of_package_is_refused_with_not_inhouse) {
  for (const GatedHook& hook : kGatedHooks) {
    Fresh([&](Platform& platform) {
      platform.packages.push_back(doubles::MakePackage("pkg", "/proc/nowhere/pkg"));
      StandardErrorOf([&] { EXPECT_EQ(0, hook.function(OtherManifest().get(), "pkg")); });
      EXPECT_TRUE(Holds(platform, hook.frame(Join({OtherWalk(), NotInhouse(hook.gate)}))));
      EXPECT_TRUE(cacheStateUninstall.empty());
      EXPECT_TRUE(AllRecordsDestroyed(platform));
    });
  }
}

FRESH_TEST(Hooks, only_install_writes_to_standard_error_when_it_refuses) {
  EXPECT_EQ("### INSTALL : morvath, skip gac. it's not dotnet-inhouse app : pkg\n",
            StandardErrorOf([] { PKGMGR_PARSER_PLUGIN_INSTALL(nullptr, "pkg"); }));
  EXPECT_EQ("### INSTALL : morvath, skip gac. it's not dotnet-inhouse app : (null)\n",
            StandardErrorOf([] { EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_INSTALL(nullptr, nullptr)); }));
  for (const HookFunction hook :
       {PKGMGR_PARSER_PLUGIN_UNINSTALL, PKGMGR_PARSER_PLUGIN_CLEAN, PKGMGR_PARSER_PLUGIN_UNDO}) {
    EXPECT_EQ("", StandardErrorOf([&] { EXPECT_EQ(0, hook(nullptr, "pkg")); }));
  }
}

FRESH_TEST(Hooks, once_a_dotnet_inhouse_manifest_was_seen_every_manifest_passes_the_gate) {
  PKGMGR_PARSER_PLUGIN_UNDO(DotnetManifest().get(), "pkg");
  platform.journal.clear();
  EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_UNINSTALL(OtherManifest().get(), "other"));
  EXPECT_TRUE(Holds(platform, {Hook("UNINSTALL", {OtherWalk()})}));
  EXPECT_EQ((Flags{{"other", true}}), cacheStateUninstall);
}

TEST(Hooks, undo_changes_nothing_and_takes_a_null_id) {
  for (const char* id : {"pkg", static_cast<const char*>(nullptr)}) {
    for (const bool dotnet : {false, true}) {
      Fresh([&](Platform& platform) {
        const Document manifest = dotnet ? DotnetManifest() : OtherManifest();
        EXPECT_EQ("", StandardErrorOf([&] { EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_UNDO(manifest.get(), id)); }));
        EXPECT_TRUE(Holds(platform, {Hook("UNDO", {dotnet ? DotnetWalk() : Join({OtherWalk(), NotInhouse("UNDO")})})}));
        EXPECT_TRUE(cacheStateUninstall.empty());
        EXPECT_TRUE(aotStateUpgrade.empty());
      });
    }
  }
}

struct NullIdHook {
  HookFunction function;
  Steps journal;
  std::string standard_error;
};

TEST(Hooks, a_null_id_leaves_as_an_exception_after_the_exit_lines) {
  const Steps removing = Traced("morvath", "bool removedPkgFromTPACacheFile(const char*)", Steps{}, 422);
  const NullIdHook hooks[] = {
      {PKGMGR_PARSER_PLUGIN_INSTALL, Hook("INSTALL", {DotnetWalk()}), "### INSTALL : morvath : (null)\n"},
      {PKGMGR_PARSER_PLUGIN_UPGRADE, Hook("UPGRADE", {}), ""},
      {PKGMGR_PARSER_PLUGIN_REMOVED, Hook("REMOVED", {Hook("UPGRADE", {})}), ""},
      {PKGMGR_PARSER_PLUGIN_UNINSTALL, Hook("UNINSTALL", {DotnetWalk()}), ""},
      {PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL, Hook("RECOVERUNINSTALL", {removing}), ""},
      {PKGMGR_PARSER_PLUGIN_CLEAN, Hook("CLEAN", {DotnetWalk()}), ""},
      {PKGMGR_PARSER_PLUGIN_CLEANUP, Hook("CLEANUP", {}), ""},
  };
  for (const NullIdHook& hook : hooks) {
    Fresh([&](Platform& platform) {
      const std::string standard_error = StandardErrorOf(
          [&] { EXPECT_TRUE(RaisesNullString([&] { hook.function(DotnetManifest().get(), nullptr); })); });
      EXPECT_EQ(hook.standard_error, standard_error);
      EXPECT_TRUE(Holds(platform, hook.journal));
      EXPECT_TRUE(cacheStateUninstall.empty());
      EXPECT_TRUE(aotStateUpgrade.empty());
      EXPECT_TRUE(AllRecordsDestroyed(platform));
    });
  }
}

TEST(Hooks, upgrade_of_a_null_id_leaves_as_an_exception_whatever_the_manifest) {
  for (const HookFunction hook :
       {PKGMGR_PARSER_PLUGIN_UPGRADE, PKGMGR_PARSER_PLUGIN_REMOVED, PKGMGR_PARSER_PLUGIN_CLEANUP}) {
    Fresh([&](Platform&) { EXPECT_TRUE(RaisesNullString([&] { hook(nullptr, nullptr); })); });
  }
}

FRESH_TEST(Restart, a_successful_restart_writes_only_the_frame) {
  restartDotnetCandidateProcess();
  EXPECT_TRUE(Holds(platform, {LoaderRestarted()}));
}

TEST(Restart, a_failed_restart_is_one_error_line_and_is_not_tried_again) {
  for (const int code : {-1, 1, -3}) {
    Fresh([&](Platform& platform) {
      platform.FailNext("aul_restart_loader", code);
      EXPECT_EQ("", StandardErrorOf(restartDotnetCandidateProcess));
      EXPECT_TRUE(Holds(
          platform,
          {TracedPlugin("void restartDotnetCandidateProcess()",
                        {Restart("dotnet-loader-inhouse"),
                         Plugin("restartDotnetCandidateProcess").Error("Can't restart dotnet-loader-inhouse")})}));
    });
  }
}

}  // namespace
}  // namespace unit
