// The commands that only send an event to the plug-in, uninstalling, and raw events.
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

constexpr const char* kNoEntries = "[START][END]";
constexpr const char* kTpaOfC = "[START]:/opt/usr/globalapps/c/shared/res/C.dll[END]";
constexpr const char* kCobaOfC = "[START]:/opt/usr/globalapps/c/shared/res/[END]";

// A device with the plain package "a" and the CoBA component "c".
class EventE2e : public HookDesk {
 protected:
  void SetUp() override {
    HookDesk::SetUp();
    if (IsSkipped()) return;
    RunExpecting(0, {"install", MakePackage("a", ManifestText("a", "1"))});
    RunExpecting(
        0, {"install", MakePackage("c", ManifestText("c", "1", CobaMetadata()), {{"shared/res/C.dll", "component"}})});
  }
};

TEST_F(EventE2e, uninstall_takes_files_record_and_cache_entries_away) {
  const Result result = RunExpecting(0, {"uninstall", "c"});
  EXPECT_THAT(result.out, HasSubstr("uninstalled c 1\n"
                                    "    UNINSTALL returned 0, CLEAN returned 0\n"
                                    "    TPA.txt  - /opt/usr/globalapps/c/shared/res/C.dll\n"
                                    "    CoBA.txt - /opt/usr/globalapps/c/shared/res/\n"
                                    "    loader   restarted\n"));
  EXPECT_EQ(CacheFile("TPA.txt"), kNoEntries);
  EXPECT_EQ(CacheFile("CoBA.txt"), kNoEntries);
  EXPECT_FALSE(support::IsThere(OnDesk("/opt/usr/globalapps/c")));
  EXPECT_THAT(RunExpecting(0, {"list"}).out, Not(HasSubstr("globalapps/c")));
}

TEST_F(EventE2e, remove_runs_the_install_pass_again_and_keeps_the_package) {
  AddPlatformFile("framework/Late.dll");
  support::WriteFile(OnDesk("/opt/usr/globalapps/a/bin/Late.dll"));
  const Result result = RunExpecting(0, {"remove", "a"});
  EXPECT_THAT(result.out, HasSubstr("took back an update of a 1; the package stays installed\n"
                                    "    REMOVED returned 0, CLEAN returned 0\n"
                                    "    removed  bin/Late.dll"));
  EXPECT_TRUE(support::IsThere(OnDesk("/opt/usr/globalapps/a/orvel-manifest.xml")));
}

TEST_F(EventE2e, recover_drops_and_adds_the_entries_of_a_component_again) {
  const Result result = RunExpecting(0, {"recover", "c"});
  EXPECT_THAT(result.out, HasSubstr("recovered c 1 from a failed uninstall; the package stays installed\n"
                                    "    RECOVERUNINSTALL returned 0, CLEAN returned 0\n"));
  EXPECT_EQ(CacheFile("TPA.txt"), kTpaOfC);
}

TEST_F(EventE2e, clean_adds_entries_that_were_lost) {
  support::WriteFile(OnDesk("/opt/usr/home/owner/share/dotnet/TPA.txt"), kNoEntries);
  const Result result = RunExpecting(0, {"clean", "c"});
  EXPECT_THAT(result.out, HasSubstr("cleaned c 1\n    CLEAN returned 0\n    TPA.txt  + "));
  EXPECT_EQ(CacheFile("TPA.txt"), kTpaOfC);
}

TEST_F(EventE2e, cleanup_drops_the_entries_of_a_package_that_serves_no_others_any_more) {
  support::WriteFile(OnDesk("/opt/usr/home/owner/share/dotnet/TPA.txt"), "[START]/opt/usr/globalapps/a/A.dll[END]");
  EXPECT_THAT(RunExpecting(0, {"clean", "a"}).out, HasSubstr("TPA.txt  unchanged"));
  const Result result = RunExpecting(0, {"cleanup", "a"});
  EXPECT_THAT(result.out, HasSubstr("cleaned up a 1\n    CLEANUP returned 0\n    TPA.txt  - "
                                    "/opt/usr/globalapps/a/A.dll\n"));
  EXPECT_EQ(CacheFile("TPA.txt"), kNoEntries);
}

TEST_F(EventE2e, undo_changes_nothing) {
  const auto before = DeviceState();
  EXPECT_THAT(RunExpecting(0, {"undo", "c"}).out,
              HasSubstr("told the plug-in to undo c 1\n    UNDO returned 0\n    TPA.txt  unchanged\n"));
  EXPECT_EQ(DeviceState(), before);
}

TEST_F(EventE2e, a_failed_restart_of_the_loader_is_told_with_its_reason) {
  support::WriteFile(OnDesk("/opt/usr/home/owner/share/dotnet/TPA.txt"), "[START]/nowhere/X.dll[END]");
  const Result result = RunExpecting(0, {"clean", "c"});
  EXPECT_THAT(result.out, HasSubstr("    loader   restart failed: "));
  EXPECT_THAT(result.out, HasSubstr("/nowhere/X.dll"));
}

TEST_F(EventE2e, events_of_one_process_share_the_plug_ins_state) {
  const Result result = RunExpecting(0, {"events", "install:a", "Install:a", "UNINSTALL:c", "clean:c"});
  EXPECT_THAT(result.out, HasSubstr("INSTALL a returned 0\nINSTALL a returned 0\n"
                                    "UNINSTALL c returned 0\nCLEAN c returned 0\n"));
  EXPECT_THAT(result.err, HasSubstr("GAC already run for same pkgId : a\n"));
  EXPECT_EQ(CacheFile("TPA.txt"), kNoEntries) << "CLEAN after UNINSTALL must leave the cache alone";
  EXPECT_TRUE(support::IsThere(OnDesk("/opt/usr/globalapps/c/shared/res/C.dll"))) << "events move no files";
}

TEST_F(EventE2e, a_new_process_starts_with_fresh_state) {
  RunExpecting(0, {"events", "uninstall:c", "clean:c"});
  RunExpecting(0, {"events", "clean:c"});
  EXPECT_EQ(CacheFile("TPA.txt"), kTpaOfC);
  EXPECT_EQ(CacheFile("CoBA.txt"), kCobaOfC);
}

TEST_F(EventE2e, an_event_for_an_unknown_package_is_refused_before_any_hook_is_called) {
  const auto before = DeviceState();
  const Result result = RunExpecting(1, {"events", "uninstall:c", "clean:stranger"});
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("orvelbox: stranger: not installed; see what is with: orvelbox list\n"));
  EXPECT_EQ(DeviceState(), before);
}

}  // namespace
}  // namespace e2e
