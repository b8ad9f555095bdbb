// The device after a killed run, and its repair by the next run.
#include "orvelbox/device/installed_trees.h"

#include "orvelbox/package/manifest.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

class InstalledTreesTest : public DirectoryTest {
 protected:
  InstalledTreesTest()
      : device_(host::CreateDevice(dir_.path() / "device")), trees_(device_, host::ReadConfig(device_)) {}

  std::string Source(const std::string& version) const {
    const std::string source = dir_ / ("source-" + version);
    WriteFile(source + "/" + kManifestName, "<manifest package=\"a\" version=\"" + version + "\"/>");
    WriteFile(source + "/version", version);
    return source;
  }
  host::Package Package(const std::string& version) const {
    return PlacedAt(ReadManifest(Source(version)).package, trees_.RootOnDevice("a"));
  }
  std::string Installed(const std::string& name) const {
    return device_.OnDesk("/opt/usr/globalapps").string() + "/" + name;
  }
  std::string RegisteredVersion() const {
    const auto package = host::PackageStore(device_.Database(), host::PackageStore::Mode::kReadOnly).Find("a");
    return package ? package->version : "none";
  }
  void Install(const std::string& version) const {
    trees_.Add(Source(version), Package(version));
    trees_.KeepAddition();
  }
  std::string Cache() const { return ReadFile(CacheFile()); }
  std::string CacheFile() const { return (device_.OnDesk(kCacheDirectory) / "TPA.txt").string(); }
  void ExpectNothingOfIt() const {
    EXPECT_EQ(RegisteredVersion(), "none");
    EXPECT_THAT(support::NamesIn(Installed("")), IsEmpty());
    EXPECT_FALSE(support::IsThere(device_.directory / "pending"));
  }
  void ExpectInPlace(const std::string& version) const {
    EXPECT_EQ(ReadFile(Installed("a/version")), version);
    EXPECT_EQ(RegisteredVersion(), version);
    EXPECT_THAT(support::NamesIn(Installed("")), ElementsAre("a"));
    EXPECT_FALSE(support::IsThere(device_.directory / "pending"));
  }

  void ExpectSound() const { EXPECT_THAT(trees_.Mend(), IsEmpty()); }

  host::Device device_;
  InstalledTrees trees_;
};

TEST_F(InstalledTreesTest, what_is_done_or_undone_needs_no_mending) {
  Install("1");
  ExpectSound();
  trees_.Replace(Source("2"), Package("2"), Package("1"));
  trees_.RestorePrevious(Package("1"));
  ExpectSound();
  ExpectInPlace("1");
  trees_.Replace(Source("2"), Package("2"), Package("1"));
  trees_.KeepUpgrade("a");
  ExpectSound();
  ExpectInPlace("2");
  trees_.BeginRemoval("a");
  trees_.UndoRemoval();
  ExpectSound();
  trees_.BeginRemoval("a");
  trees_.Remove(Package("2"));
  ExpectSound();
  ExpectNothingOfIt();
  trees_.Add(Source("1"), Package("1"));
  trees_.UndoAddition(Package("1"));
  ExpectSound();
  ExpectNothingOfIt();
}

TEST_F(InstalledTreesTest, a_tree_on_its_way_in_is_rubbish) {
  WriteFile(Installed(".staging/a/version"), "1");
  EXPECT_THAT(trees_.Mend(), ElementsAre("mended a: the files that an interrupted command left behind were removed"));
  EXPECT_THAT(support::NamesIn(Installed("")), IsEmpty());
}

TEST_F(InstalledTreesTest, a_record_without_a_tree_is_forgotten) {
  Install("1");
  fs::remove_all(Installed("a"));
  EXPECT_THAT(trees_.Mend(), ElementsAre("mended a: its files are gone, so it is no longer installed"));
  EXPECT_EQ(RegisteredVersion(), "none");
}

// An upgrade is killed after each of its steps.
TEST_F(InstalledTreesTest, an_upgrade_killed_while_it_copies_changes_nothing) {
  Install("1");
  WriteFile(Installed(".staging/a/version"), "2");
  trees_.Mend();
  ExpectInPlace("1");
}

TEST_F(InstalledTreesTest, an_upgrade_killed_between_its_moves_is_taken_back) {
  Install("1");
  WriteFile(Installed(".staging/a/version"), "2");
  fs::create_directory(Installed(".previous"));
  fs::rename(Installed("a"), Installed(".previous/a"));
  EXPECT_THAT(trees_.Mend(),
              ElementsAre("mended a: an upgrade was interrupted; the version before it is in place again"));
  ExpectInPlace("1");
}

TEST_F(InstalledTreesTest, an_upgrade_killed_while_hooks_run_is_taken_back) {
  Install("1");
  trees_.Replace(Source("2"), Package("2"), Package("1"));
  EXPECT_EQ(RegisteredVersion(), "2");
  EXPECT_THAT(trees_.Mend(),
              ElementsAre("mended a: an upgrade was interrupted; the version before it is in place again"));
  ExpectInPlace("1");
}

TEST_F(InstalledTreesTest, an_upgrade_killed_while_it_is_taken_back_is_taken_back) {
  Install("1");
  trees_.Replace(Source("2"), Package("2"), Package("1"));
  fs::create_directory(Installed(".staging"));
  fs::rename(Installed("a"), Installed(".staging/a"));
  trees_.Mend();
  ExpectInPlace("1");
}

TEST_F(InstalledTreesTest, an_upgrade_killed_after_it_was_decided_stays) {
  Install("1");
  trees_.Replace(Source("2"), Package("2"), Package("1"));
  Journal(device_).Decide();
  WriteFile(CacheFile(), "after the hooks");
  EXPECT_THAT(trees_.Mend(), ElementsAre("mended a: an upgrade was interrupted at its end; the new version stays"));
  ExpectInPlace("2");
  EXPECT_EQ(Cache(), "after the hooks");
}

TEST_F(InstalledTreesTest, an_upgrade_killed_while_the_old_version_goes_stays) {
  Install("1");
  trees_.Replace(Source("2"), Package("2"), Package("1"));
  Journal(device_).Decide();
  fs::create_directory(Installed(".staging"));
  fs::rename(Installed(".previous/a"), Installed(".staging/a"));
  trees_.Mend();
  ExpectInPlace("2");
}

TEST_F(InstalledTreesTest, an_install_killed_while_hooks_run_is_taken_back) {
  trees_.Add(Source("1"), Package("1"));
  fs::remove(CacheFile());
  EXPECT_THAT(trees_.Mend(), ElementsAre("mended a: an install was interrupted; it was taken back"));
  ExpectNothingOfIt();
  EXPECT_EQ(Cache(), "[START][END]");
}

TEST_F(InstalledTreesTest, an_uninstall_killed_while_hooks_run_is_taken_back) {
  Install("1");
  trees_.BeginRemoval("a");
  WriteFile(CacheFile(), "half");
  EXPECT_THAT(trees_.Mend(), ElementsAre("mended a: an uninstall was interrupted; the package stays installed"));
  ExpectInPlace("1");
  EXPECT_EQ(Cache(), "[START][END]");
}

TEST_F(InstalledTreesTest, an_uninstall_killed_after_it_was_decided_is_completed) {
  Install("1");
  trees_.BeginRemoval("a");
  Journal(device_).Decide();
  WriteFile(CacheFile(), "after the hooks");
  EXPECT_THAT(trees_.Mend(), ElementsAre("mended a: an uninstall was interrupted at its end; it is done now"));
  ExpectNothingOfIt();
  EXPECT_EQ(Cache(), "after the hooks");
}

TEST_F(InstalledTreesTest, a_note_that_was_not_completed_says_nothing) {
  Install("1");
  WriteFile(device_.directory / "pending.new/begun", "install a");
  EXPECT_THAT(trees_.Mend(), IsEmpty());
  ExpectInPlace("1");
  EXPECT_FALSE(support::IsThere(device_.directory / "pending.new"));
}

TEST_F(InstalledTreesTest, the_records_that_killed_loaders_did_not_complete_are_removed) {
  const std::string record = device_.LoaderRecord();
  for (const char* end : {"", ".new-1", ".new-23"}) WriteFile(record + end, "{}");
  EXPECT_THAT(trees_.Mend(), IsEmpty());
  for (const char* end : {".new-1", ".new-23"}) EXPECT_FALSE(support::IsThere(record + end)) << end;
  EXPECT_EQ(ReadFile(record), "{}");
}

TEST_F(InstalledTreesTest, empty_directories_on_the_way_are_removed_without_a_word) {
  Install("1");
  fs::create_directory(Installed(".staging"));
  fs::create_directory(Installed(".previous"));
  EXPECT_THAT(trees_.Mend(), IsEmpty());
  ExpectInPlace("1");
}

TEST_F(InstalledTreesTest, a_damaged_note_is_named) {
  WriteFile(device_.directory / "pending/begun", "something a");
  const std::string pending = device_.directory / "pending";
  EXPECT_EQ(ErrorOf([&] { trees_.Mend(); }),
            pending + "/begun: damaged; remove " + pending + ", and uninstall the package that was worked on last");
}

TEST_F(InstalledTreesTest, cache_bytes_of_any_kind_are_put_back) {
  const std::string bytes("[START]/\xff\xfe\0\n:\"[END]", 19);
  WriteFile(CacheFile(), bytes);
  trees_.Add(Source("1"), Package("1"));
  WriteFile(CacheFile(), "other");
  trees_.Mend();
  EXPECT_EQ(Cache(), bytes);
}

TEST_F(InstalledTreesTest, a_replacement_that_cannot_be_registered_is_taken_back) {
  Install("1");
  host::Package other = Package("1");
  other.id = "other";
  other.root = trees_.RootOnDevice("other");
  other.applications.push_back({"app", "ui-application", "", "", {}});
  trees_.Add(Source("1"), other);
  trees_.KeepAddition();
  host::Package upgraded = Package("2");
  upgraded.applications = other.applications;
  EXPECT_THROW(trees_.Replace(Source("2"), upgraded, Package("1")), host::DeviceError);
  EXPECT_EQ(ReadFile(Installed("a/version")), "1");
  EXPECT_EQ(RegisteredVersion(), "1");
}

TEST_F(InstalledTreesTest, an_addition_that_cannot_be_registered_leaves_nothing) {
  fs::remove(device_.Database());
  EXPECT_THROW(trees_.Add(Source("1"), Package("1")), host::DeviceError);
  EXPECT_THAT(support::NamesIn(Installed("")), IsEmpty());
}

}  // namespace
}  // namespace orvelbox
