// Removing a package from both cache files, and adding it.
#include "plugin/cache_files.h"

#include <cerrno>

#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

const std::string kRoot = "/opt/usr/apps/pkg";
const std::string kResources = kRoot + "/shared/res/";

const std::string kEmptyList = "[START][END]";

// A cache text with the entries.
std::string ListOf(const std::string& entries) { return "[START]" + entries + "[END]"; }

// Creates a package with the root, and both cache files with these texts.
void Put(Platform& platform, const std::string& tpa, const std::string& coba) {
  platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
  WriteFile(kTpaFile, tpa);
  WriteFile(kCobaFile, coba);
}

void PutAssemblies(std::initializer_list<const char*> names) {
  for (const char* name : names) WriteFile(kResources + name);
}

void ExpectCaches(const std::string& tpa, const std::string& coba) {
  EXPECT_EQ(tpa, ReadFile(kTpaFile));
  EXPECT_EQ(coba, ReadFile(kCobaFile));
}

DEVICE_TEST(CacheFiles, a_listed_package_is_taken_out_of_both_files) {
  Put(platform, ListOf("/a/A.dll:" + kResources + "1.dll:" + kResources + "2.dll"),
      ListOf(kResources + ":/a/shared/res/"));
  EXPECT_TRUE(removedPkgFromTPACacheFile("pkg"));
  ExpectCaches(ListOf("/a/A.dll"), ListOf("/a/shared/res/"));
  EXPECT_TRUE(Holds(
      platform, {Removing({CacheRead(kTpaFile, {kResources + "1.dll:", ":" + kResources + "2.dll"}, ListOf("/a/A.dll")),
                           Saved(kTpaFile), CacheRead(kCobaFile, {kResources + ":"}, ListOf("/a/shared/res/")),
                           Saved(kCobaFile)})}));
  EXPECT_EQ((std::vector<std::string>{"CoBA.txt", "TPA.txt"}), support::NamesIn(support::kCacheDirectory));
  EXPECT_TRUE(AllRecordsDestroyed(platform));
}

struct RemoveRow {
  const char* what;
  std::string tpa;
  std::string coba;
  bool removed;
  std::string tpa_left;
  std::string coba_left;
};

const RemoveRow kRemoving[] = {
    {"listed in the first file only", ListOf(kResources + "A.dll"), ListOf("/a/"), true, kEmptyList, ListOf("/a/")},
    {"listed in the second file only", ListOf("/a/A.dll"), ListOf(kResources), true, ListOf("/a/A.dll"), kEmptyList},
    {"listed in neither file", ListOf("/a/A.dll"), ListOf("/a/"), false, ListOf("/a/A.dll"), ListOf("/a/")},
    {"empty files", "", "", false, "", ""},
    {"damaged files", "[START]" + kResources + "A.dll", kResources + "[END]", true, "[START]", kResources + "[END]"},
};

TEST(CacheFiles, a_file_is_rewritten_only_when_it_listed_the_package) {
  for (const RemoveRow& row : kRemoving) {
    FreshOnDevice([&](Platform& platform) {
      Put(platform, row.tpa, row.coba);
      // A second name of the file shows whether it was replaced.
      fs::create_hard_link(kTpaFile, std::string(kTpaFile) + ".same");
      fs::create_hard_link(kCobaFile, std::string(kCobaFile) + ".same");
      EXPECT_EQ(row.removed, removedPkgFromTPACacheFile("pkg")) << row.what;
      ExpectCaches(row.tpa_left, row.coba_left);
      EXPECT_EQ(row.tpa == row.tpa_left, fs::hard_link_count(kTpaFile) == 2) << row.what;
      EXPECT_EQ(row.coba == row.coba_left, fs::hard_link_count(kCobaFile) == 2) << row.what;
    });
  }
}

DEVICE_TEST(CacheFiles, a_text_that_is_empty_after_the_removal_is_not_written_but_counts) {
  // A damaged file: the entry counts because of the separator, which is removed with it.
  Put(platform, ":" + kResources + "A.dll", kEmptyList);
  EXPECT_TRUE(removedPkgFromTPACacheFile("pkg"));
  ExpectCaches(":" + kResources + "A.dll", kEmptyList);
  EXPECT_TRUE(Holds(platform, {Removing({CacheRead(kTpaFile, {":" + kResources + "A.dll"}, ""),
                                         CacheRead(kCobaFile, {}, kEmptyList)})}));
}

DEVICE_TEST(CacheFiles, a_missing_file_stays_missing_and_the_other_is_still_edited) {
  Put(platform, "", ListOf(kResources));
  fs::remove(kTpaFile);
  EXPECT_TRUE(removedPkgFromTPACacheFile("pkg"));
  EXPECT_FALSE(IsThere(kTpaFile));
  EXPECT_EQ(kEmptyList, ReadFile(kCobaFile));
  EXPECT_TRUE(Holds(platform, {Removing({CacheMissing(kTpaFile), CacheRead(kCobaFile, {kResources}, kEmptyList),
                                         Saved(kCobaFile)})}));
}

DEVICE_TEST(CacheFiles, without_any_file_nothing_is_removed_and_none_is_made) {
  platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
  PutAssemblies({"A.dll"});
  EXPECT_FALSE(removedPkgFromTPACacheFile("pkg"));
  addPkgToTPACacheFile("pkg");
  EXPECT_TRUE(support::NamesIn(support::kCacheDirectory).empty());
  EXPECT_TRUE(Holds(platform, {Removing({CacheMissing(kTpaFile), CacheMissing(kCobaFile)}),
                               Adding({CacheMissing(kTpaFile), CacheMissing(kCobaFile)})}));
}

FRESH_TEST(CacheFiles, a_null_id_raises_after_the_exit_line) {
  EXPECT_TRUE(RaisesNullString([] { removedPkgFromTPACacheFile(nullptr); }));
  EXPECT_TRUE(RaisesNullString([] { addPkgToTPACacheFile(nullptr); }));
  EXPECT_TRUE(Holds(platform, {Removing({}), Adding({})}));
}

DEVICE_TEST(CacheFiles, a_package_is_added_at_the_end_of_both_files) {
  Put(platform, ListOf("/a/A.dll"), ListOf("/a/shared/res/"));
  PutAssemblies({"b.dll", "B.dll", "A.dll", "C.txt", "deep/D.dll", "E.DLL"});
  addPkgToTPACacheFile("pkg");
  ExpectCaches(ListOf("/a/A.dll:" + kResources + "A.dll:" + kResources + "B.dll:" + kResources + "b.dll"),
               ListOf("/a/shared/res/:" + kResources));
  EXPECT_TRUE(Holds(platform, {Adding({CacheRead(kTpaFile, {}, ListOf("/a/A.dll")), Saved(kTpaFile),
                                       CacheRead(kCobaFile, {}, ListOf("/a/shared/res/")), Saved(kCobaFile)})}));
  EXPECT_EQ((std::vector<std::string>{"CoBA.txt", "TPA.txt"}), support::NamesIn(support::kCacheDirectory));
  EXPECT_TRUE(AllRecordsDestroyed(platform));
}

struct AddRow {
  const char* what;
  std::string tpa;
  std::string coba;
  std::string tpa_after;
  std::string coba_after;
};

const AddRow kAdding[] = {
    {"into empty lists an empty first element comes", kEmptyList, kEmptyList, ListOf(":" + kResources + "A.dll"),
     ListOf(":" + kResources)},
    {"a listed package moves to the end and is not doubled",
     ListOf(kResources + "A.dll:" + kResources + "Old.dll:/a/A.dll"), ListOf(kResources + ":/a/"),
     ListOf("/a/A.dll:" + kResources + "A.dll"), ListOf("/a/:" + kResources)},
    {"a package alone in the lists", ListOf(kResources + "A.dll"), ListOf(kResources),
     ListOf(":" + kResources + "A.dll"), ListOf(":" + kResources)},
    {"empty files stay empty", "", "", "", ""},
    {"damaged files lose five more characters", "[START]/a/A.dll", "abc", ListOf("/a/:" + kResources + "A.dll"),
     "abc:" + kResources + "[END]"},
    {"one empty file does not keep the other from being edited", "", kEmptyList, "", ListOf(":" + kResources)},
};

TEST(CacheFiles, adding_appends_before_the_end_marker_unseen) {
  for (const AddRow& row : kAdding) {
    FreshOnDevice([&](Platform& platform) {
      Put(platform, row.tpa, row.coba);
      PutAssemblies({"A.dll"});
      addPkgToTPACacheFile("pkg");
      SCOPED_TRACE(row.what);
      ExpectCaches(row.tpa_after, row.coba_after);
    });
  }
}

DEVICE_TEST(CacheFiles, adding_a_package_without_assemblies_leaves_the_first_file_and_lists_the_directory) {
  const std::string tpa = ListOf(kResources + "Old.dll:/a/A.dll");
  Put(platform, tpa, ListOf(kResources + ":/a/"));
  fs::create_hard_link(kTpaFile, std::string(kTpaFile) + ".same");
  addPkgToTPACacheFile("pkg");
  ExpectCaches(tpa, ListOf("/a/:" + kResources));
  EXPECT_EQ(2u, fs::hard_link_count(kTpaFile)) << "the file was rewritten";
  EXPECT_TRUE(Holds(platform, {Adding({CacheRead(kTpaFile, {kResources + "Old.dll:"}, ListOf("/a/A.dll")),
                                       CacheRead(kCobaFile, {kResources + ":"}, ListOf("/a/")), Saved(kCobaFile)})}));
}

// Assemblies are listed by absolute paths, the directory as the root spells it.
DEVICE_TEST(CacheFiles, of_a_relative_root_only_the_assemblies_paths_are_made_absolute) {
  Put(platform, kEmptyList, kEmptyList);
  platform.packages[0].applications[0].root = "apps/pkg";
  PutAssemblies({"A.dll"});
  fs::current_path("/opt/usr");
  addPkgToTPACacheFile("pkg");
  ExpectCaches("[START]:" + fs::current_path().string() + "/apps/pkg/shared/res/A.dll[END]",
               ListOf(":apps/pkg/shared/res/"));
}

// Adds or removes the package. The result must be as recorded.
void Change(bool adding) {
  if (adding) return addPkgToTPACacheFile("pkg");
  EXPECT_TRUE(removedPkgFromTPACacheFile("pkg"));
}

// The old file is removed before the new one is written: after a failed write there is none. The other file is not
// affected.
TEST(CacheFiles, a_write_that_fails_leaves_no_cache_file) {
  const std::string temp_tpa = std::string(support::kCacheDirectory) + "temp_TPA.txt";
  const std::pair<const char*, std::function<void()>> failures[] = {
      {"open error", [&] { fs::create_directory(temp_tpa); }},
      {"refused path", [&] { fs::create_symlink("/opt/usr/elsewhere", temp_tpa); }},
  };
  for (const auto& [what, prepare] : failures) {
    for (const bool adding : {false, true}) {
      FreshOnDevice([&, what = what, &prepare = prepare](Platform& platform) {
        Put(platform, ListOf(kResources + "A.dll"), ListOf(kResources));
        PutAssemblies({"A.dll"});
        prepare();
        Change(adding);
        EXPECT_FALSE(IsThere(kTpaFile)) << what;
        EXPECT_EQ(adding ? ListOf(":" + kResources) : kEmptyList, ReadFile(kCobaFile)) << what;
      });
    }
  }
}

TEST(CacheFiles, a_rename_that_fails_leaves_the_temporary_files_and_no_cache_file) {
  for (const bool adding : {false, true}) {
    FreshOnDevice([&](Platform& platform) {
      Put(platform, ListOf(kResources + "A.dll"), ListOf(kResources));
      PutAssemblies({"A.dll"});
      interposed::Now().rename_error = EIO;
      Change(adding);
      EXPECT_EQ((std::vector<std::string>{"temp_CoBA.txt", "temp_TPA.txt"}),
                support::NamesIn(support::kCacheDirectory));
      EXPECT_EQ(adding ? ListOf(":" + kResources + "A.dll") : kEmptyList,
                ReadFile(std::string(support::kCacheDirectory) + "temp_TPA.txt"));
      EXPECT_EQ(2u, platform.Calls("sync()").size());
    });
  }
}

}  // namespace
}  // namespace unit
