// A package taken out of both cache files, and put into them.
#include "plugin/cache_files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>

#include "tests/support/device_root.h"
#include "tests/support/expected_lines.h"
#include "tests/support/files.h"
#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"

namespace {

namespace fs = std::filesystem;

using doubles::Platform;
using doubles::Steps;
using doubles::Traced;
using expected::CacheMissing;
using expected::CacheRead;
using expected::Plugin;
using expected::Saved;
using support::IsThere;
using support::kCobaFile;
using support::kTpaFile;
using support::ReadFile;
using support::WriteFile;

const std::string kRoot = "/opt/usr/apps/pkg";
const std::string kResources = kRoot + "/shared/res/";

// A package with the root, and both cache files with these texts.
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

Steps Removing(std::initializer_list<Steps> inside) {
  return Traced("morvath", "bool removedPkgFromTPACacheFile(const char*)", inside, 422);
}

Steps Adding(std::initializer_list<Steps> inside) {
  return Traced("morvath", "void addPkgToTPACacheFile(const char*)", inside, 448);
}

DEVICE_TEST(CacheFiles, a_listed_package_is_taken_out_of_both_files) {
  Put(platform, "[START]/a/A.dll:" + kResources + "1.dll:" + kResources + "2.dll[END]",
      "[START]" + kResources + ":/a/shared/res/[END]");
  EXPECT_TRUE(removedPkgFromTPACacheFile("pkg"));
  ExpectCaches("[START]/a/A.dll[END]", "[START]/a/shared/res/[END]");
  EXPECT_TRUE(
      Holds(platform,
            {Removing({CacheRead(kTpaFile, {kResources + "1.dll:", ":" + kResources + "2.dll"}, "[START]/a/A.dll[END]"),
                       Saved(kTpaFile), CacheRead(kCobaFile, {kResources + ":"}, "[START]/a/shared/res/[END]"),
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
    {"listed in the first file only", "[START]" + kResources + "A.dll[END]", "[START]/a/[END]", true, "[START][END]",
     "[START]/a/[END]"},
    {"listed in the second file only", "[START]/a/A.dll[END]", "[START]" + kResources + "[END]", true,
     "[START]/a/A.dll[END]", "[START][END]"},
    {"listed in neither file", "[START]/a/A.dll[END]", "[START]/a/[END]", false, "[START]/a/A.dll[END]",
     "[START]/a/[END]"},
    {"empty files", "", "", false, "", ""},
    {"damaged files", "[START]" + kResources + "A.dll", kResources + "[END]", true, "[START]", kResources + "[END]"},
};

TEST(CacheFiles, a_file_is_rewritten_only_when_it_listed_the_package) {
  for (const RemoveRow& row : kRemoving) {
    FreshOnDevice([&](Platform& platform) {
      Put(platform, row.tpa, row.coba);
      // A second name shows whether the file was replaced.
      fs::create_hard_link(kTpaFile, std::string(kTpaFile) + ".same");
      fs::create_hard_link(kCobaFile, std::string(kCobaFile) + ".same");
      EXPECT_EQ(row.removed, removedPkgFromTPACacheFile("pkg")) << row.what;
      ExpectCaches(row.tpa_left, row.coba_left);
      EXPECT_EQ(row.tpa == row.tpa_left, fs::hard_link_count(kTpaFile) == 2) << row.what;
      EXPECT_EQ(row.coba == row.coba_left, fs::hard_link_count(kCobaFile) == 2) << row.what;
    });
    if (testing::Test::IsSkipped()) return;
  }
}

DEVICE_TEST(CacheFiles, a_text_that_is_empty_after_the_removal_is_not_written_but_counts) {
  // A damaged file: the entry counts because of the separator, which goes with it.
  Put(platform, ":" + kResources + "A.dll", "[START][END]");
  EXPECT_TRUE(removedPkgFromTPACacheFile("pkg"));
  ExpectCaches(":" + kResources + "A.dll", "[START][END]");
  EXPECT_TRUE(Holds(platform, {Removing({CacheRead(kTpaFile, {":" + kResources + "A.dll"}, ""),
                                         CacheRead(kCobaFile, {}, "[START][END]")})}));
}

DEVICE_TEST(CacheFiles, a_missing_file_stays_missing_and_the_other_is_still_edited) {
  Put(platform, "", "[START]" + kResources + "[END]");
  fs::remove(kTpaFile);
  EXPECT_TRUE(removedPkgFromTPACacheFile("pkg"));
  EXPECT_FALSE(IsThere(kTpaFile));
  EXPECT_EQ("[START][END]", ReadFile(kCobaFile));
  EXPECT_TRUE(Holds(platform, {Removing({CacheMissing(kTpaFile), CacheRead(kCobaFile, {kResources}, "[START][END]"),
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

DEVICE_TEST(CacheFiles, a_package_without_a_root_is_an_error_line_and_nothing_is_read) {
  Put(platform, "[START]/a[END]", "[START]/a[END]");
  EXPECT_FALSE(removedPkgFromTPACacheFile("unknown"));
  addPkgToTPACacheFile("unknown");
  ExpectCaches("[START]/a[END]", "[START]/a[END]");
  EXPECT_TRUE(
      Holds(platform, {Removing({Plugin("removedPkgFromTPACacheFile")
                                     .At(426)
                                     .Error("remove from cache called for %s, but pkgroot is empty!", "unknown")}),
                       Adding({Plugin("addPkgToTPACacheFile")
                                   .At(452)
                                   .Error("add to cache called for %s, but pkgroot is empty!", "unknown")})}));
}

FRESH_TEST(CacheFiles, a_null_id_raises_after_the_exit_line) {
  EXPECT_TRUE(RaisesNullString([] { removedPkgFromTPACacheFile(nullptr); }));
  EXPECT_TRUE(RaisesNullString([] { addPkgToTPACacheFile(nullptr); }));
  EXPECT_TRUE(Holds(platform, {Removing({}), Adding({})}));
}

DEVICE_TEST(CacheFiles, a_package_is_added_at_the_end_of_both_files) {
  Put(platform, "[START]/a/A.dll[END]", "[START]/a/shared/res/[END]");
  PutAssemblies({"b.dll", "B.dll", "A.dll", "C.txt", "deep/D.dll", "E.DLL"});
  addPkgToTPACacheFile("pkg");
  ExpectCaches("[START]/a/A.dll:" + kResources + "A.dll:" + kResources + "B.dll:" + kResources + "b.dll[END]",
               "[START]/a/shared/res/:" + kResources + "[END]");
  EXPECT_TRUE(Holds(platform, {Adding({CacheRead(kTpaFile, {}, "[START]/a/A.dll[END]"), Saved(kTpaFile),
                                       CacheRead(kCobaFile, {}, "[START]/a/shared/res/[END]"), Saved(kCobaFile)})}));
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
    {"into empty lists an empty first element comes", "[START][END]", "[START][END]",
     "[START]:" + kResources + "A.dll[END]", "[START]:" + kResources + "[END]"},
    {"a listed package moves to the end and is not doubled",
     "[START]" + kResources + "A.dll:" + kResources + "Old.dll:/a/A.dll[END]", "[START]" + kResources + ":/a/[END]",
     "[START]/a/A.dll:" + kResources + "A.dll[END]", "[START]/a/:" + kResources + "[END]"},
    {"a package alone in the lists", "[START]" + kResources + "A.dll[END]", "[START]" + kResources + "[END]",
     "[START]:" + kResources + "A.dll[END]", "[START]:" + kResources + "[END]"},
    {"a second time after an empty list", "[START]:" + kResources + "A.dll[END]", "[START]:" + kResources + "[END]",
     "[START]:" + kResources + "A.dll[END]", "[START]:" + kResources + "[END]"},
    {"empty files stay empty", "", "", "", ""},
    {"damaged files lose five more characters", "[START]/a/A.dll", "abc", "[START]/a/:" + kResources + "A.dll[END]",
     "abc:" + kResources + "[END]"},
    {"one empty file does not keep the other from being edited", "", "[START][END]", "",
     "[START]:" + kResources + "[END]"},
};

TEST(CacheFiles, adding_appends_before_the_end_marker_unseen) {
  for (const AddRow& row : kAdding) {
    FreshOnDevice([&](Platform& platform) {
      Put(platform, row.tpa, row.coba);
      PutAssemblies({"A.dll"});
      addPkgToTPACacheFile("pkg");
      EXPECT_EQ(row.tpa_after, ReadFile(kTpaFile)) << row.what;
      EXPECT_EQ(row.coba_after, ReadFile(kCobaFile)) << row.what;
    });
    if (testing::Test::IsSkipped()) return;
  }
}

DEVICE_TEST(CacheFiles, adding_a_package_without_assemblies_leaves_the_first_file_and_lists_the_directory) {
  const std::string tpa = "[START]" + kResources + "Old.dll:/a/A.dll[END]";
  Put(platform, tpa, "[START]" + kResources + ":/a/[END]");
  fs::create_hard_link(kTpaFile, std::string(kTpaFile) + ".same");
  addPkgToTPACacheFile("pkg");
  ExpectCaches(tpa, "[START]/a/:" + kResources + "[END]");
  EXPECT_EQ(2u, fs::hard_link_count(kTpaFile)) << "the file was rewritten";
  EXPECT_TRUE(
      Holds(platform, {Adding({CacheRead(kTpaFile, {kResources + "Old.dll:"}, "[START]/a/A.dll[END]"),
                               CacheRead(kCobaFile, {kResources + ":"}, "[START]/a/[END]"), Saved(kCobaFile)})}));
}

DEVICE_TEST(CacheFiles, a_root_that_begins_anothers_takes_that_ones_entries_too) {
  Put(platform, "[START]" + kRoot + "2/shared/res/X.dll:" + kResources + "A.dll[END]",
      "[START]" + kRoot + "2/shared/res/[END]");
  PutAssemblies({"A.dll"});
  addPkgToTPACacheFile("pkg");
  ExpectCaches("[START]:" + kResources + "A.dll[END]", "[START]:" + kResources + "[END]");
}

// Assemblies are listed by absolute paths, the directory as the root gives it.
DEVICE_TEST(CacheFiles, of_a_relative_root_only_the_assemblies_paths_are_made_absolute) {
  Put(platform, "[START][END]", "[START][END]");
  platform.packages[0].applications[0].root = "apps/pkg";
  PutAssemblies({"A.dll"});
  fs::current_path("/opt/usr");
  addPkgToTPACacheFile("pkg");
  ExpectCaches("[START]:" + fs::current_path().string() + "/apps/pkg/shared/res/A.dll[END]",
               "[START]:apps/pkg/shared/res/[END]");
}

struct FailingWrite {
  const char* what;
  std::function<void()> prepare;
};

// The old file is gone before the new one is begun: a write that fails leaves none, and the other file is not touched
// by that.
TEST(CacheFiles, a_write_that_fails_leaves_no_cache_file) {
  const std::string temp_tpa = std::string(support::kCacheDirectory) + "temp_TPA.txt";
  const FailingWrite failures[] = {
      {"open error", [&] { fs::create_directory(temp_tpa); }},
      {"refused path", [&] { fs::create_symlink("/opt/usr/elsewhere", temp_tpa); }},
  };
  for (const FailingWrite& failure : failures) {
    for (const bool adding : {false, true}) {
      FreshOnDevice([&](Platform& platform) {
        Put(platform, "[START]" + kResources + "A.dll[END]", "[START]" + kResources + "[END]");
        PutAssemblies({"A.dll"});
        failure.prepare();
        if (adding) {
          addPkgToTPACacheFile("pkg");
        } else {
          EXPECT_TRUE(removedPkgFromTPACacheFile("pkg"));
        }
        EXPECT_FALSE(IsThere(kTpaFile)) << failure.what;
        EXPECT_EQ(adding ? "[START]:" + kResources + "[END]" : "[START][END]", ReadFile(kCobaFile)) << failure.what;
      });
      if (testing::Test::IsSkipped()) return;
    }
  }
}

TEST(CacheFiles, a_rename_that_fails_leaves_the_temporary_files_and_no_cache_file) {
  for (const bool adding : {false, true}) {
    FreshOnDevice([&](Platform& platform) {
      Put(platform, "[START]" + kResources + "A.dll[END]", "[START]" + kResources + "[END]");
      PutAssemblies({"A.dll"});
      interposed::Now().rename_error = EIO;
      if (adding) {
        addPkgToTPACacheFile("pkg");
      } else {
        EXPECT_TRUE(removedPkgFromTPACacheFile("pkg"));
      }
      EXPECT_EQ((std::vector<std::string>{"temp_CoBA.txt", "temp_TPA.txt"}),
                support::NamesIn(support::kCacheDirectory));
      EXPECT_EQ(adding ? "[START]:" + kResources + "A.dll[END]" : "[START][END]",
                ReadFile(std::string(support::kCacheDirectory) + "temp_TPA.txt"));
      EXPECT_EQ(2u, platform.Calls("sync()").size());
    });
    if (testing::Test::IsSkipped()) return;
  }
}

}  // namespace
