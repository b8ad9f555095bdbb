// The judgement of the load tests notices each fault.
#include <SQLiteCpp/SQLiteCpp.h>

#include "tests/load/load_desk.h"

namespace load {
namespace {

using e2e::ElementsAre;
using e2e::EndsWith;
using e2e::IsEmpty;
using e2e::StartsWith;

class Soundness : public LoadDesk {
 protected:
  void SetUp() override {
    LoadDesk::SetUp();
    if (IsSkipped()) return;
    MakeKnownFiles();
    OnNewDevice([] {});
    for (const char* id : {"org.alpha", "org.gamma"}) RunExpecting(0, {"install", known_.at(id).at("2").directory});
    ASSERT_THAT(Faults(), IsEmpty());
  }
  std::vector<std::string> Faults() const { return FaultsOf(device_, known_, Strictness::kComplete); }
  std::string InAlpha(const std::string& path) const { return OnDesk(RootOf("org.alpha") + "/" + path); }
  void Execute(const std::string& sql) const {
    SQLite::Database(device_.Database().string(), SQLite::OPEN_READWRITE).exec(sql);
  }
};

TEST_F(Soundness, a_file_of_another_version_is_a_fault) {
  support::WriteFile(InAlpha("bin/Main.dll"), "org.alpha 1 ");
  EXPECT_THAT(Faults(), ElementsAre("org.alpha 2: bin/Main.dll is not as in this version"));
}

TEST_F(Soundness, a_missing_and_an_additional_file_are_faults) {
  e2e::fs::rename(InAlpha("bin/Main.dll"), InAlpha("bin/New.dll"));
  EXPECT_THAT(Faults(), ElementsAre("org.alpha 2: bin/Main.dll is not as in this version",
                                    "org.alpha 2: bin/New.dll is not as in this version"));
}

TEST_F(Soundness, what_the_plugin_left_undone_is_a_fault_unless_it_was_hindered) {
  e2e::fs::rename(InAlpha(kInformation), InAlpha(kDuplicate));
  support::WriteFile(OnDesk(kCacheDirectory) + kTpaFile, "[START]");
  EXPECT_EQ(Faults().size(), 3u);
  EXPECT_THAT(FaultsOf(device_, known_, Strictness::kPluginHindered), IsEmpty());
}

TEST_F(Soundness, a_tree_without_a_record_and_a_record_without_a_tree_are_faults) {
  e2e::fs::rename(OnDesk(RootOf("org.gamma")), OnDesk(RootOf(".staging")));
  EXPECT_THAT(Faults(), ElementsAre("/opt/usr/globalapps/.staging: no package's tree", "org.gamma: has no tree"));
}

TEST_F(Soundness, half_a_record_is_a_fault) {
  Execute("DELETE FROM metadata");
  EXPECT_THAT(Faults(), ElementsAre(StartsWith("the database: SELECT app_id FROM metadata")));
}

TEST_F(Soundness, a_record_whose_package_is_gone_is_a_fault) {
  Execute("PRAGMA foreign_keys = OFF; INSERT INTO privileges VALUES ('org.beta', 0, 'p')");
  EXPECT_THAT(Faults(), ElementsAre(StartsWith("the database: PRAGMA foreign_key_check"),
                                    StartsWith("the database: SELECT package_id")));
}

TEST_F(Soundness, a_cache_file_without_an_entry_is_a_fault) {
  support::WriteFile(OnDesk(kCacheDirectory) + kCobaFile, "[START][END]");
  EXPECT_THAT(Faults(), ElementsAre(StartsWith("CoBA.txt: does not hold")));
}

TEST_F(Soundness, a_doubled_entry_is_a_fault) {
  const std::string entry = ":" + RootOf("org.alpha") + "/shared/res/";
  support::WriteFile(OnDesk(kCacheDirectory) + kCobaFile, "[START]" + entry + entry + "[END]");
  EXPECT_THAT(Faults(), ElementsAre(StartsWith("CoBA.txt: does not hold")));
}

TEST_F(Soundness, the_journal_and_temporary_files_are_faults) {
  support::WriteFile(device_.directory / "pending/begun", "install org.alpha");
  support::WriteFile(OnDesk(kCacheDirectory) + "other", "");
  EXPECT_THAT(Faults(), ElementsAre(EndsWith("/pending: was left"), EndsWith("/other: was left")));
}

}  // namespace
}  // namespace load
