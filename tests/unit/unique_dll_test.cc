// The duplicate policy: what happens to a file of a package.
#include "plugin/catalogues.h"
#include "plugin/duplicates.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

constexpr const char* kOrigin = "/usr/share/dotnet.orvel/framework/A.dll";

FRESH_TEST(UniqueDll, what_is_not_named_like_a_dll_is_kept_unexamined) {
  const TempDir package;
  coreFX = {{"A.DLL", "/x"}, {"A.json", "/x"}, {"A", "/x"}, {"A.dll.bak", "/x"}, {"A.dll", "/x"}};
  for (const char* name : {"A.DLL", "A.json", "A", "A.dll.bak"}) {
    WriteFile(package / name);
    EXPECT_EQ(1, isUniqueDll(package / name, name)) << name;
    EXPECT_TRUE(IsThere(package / name));
  }
  EXPECT_EQ(1, isUniqueDll("", "A.dll"));
  EXPECT_TRUE(Holds(platform, Steps{}));
}

FRESH_TEST(UniqueDll, a_link_is_kept) {
  const TempDir package;
  WriteFile(package / "B.dll");
  fs::create_symlink("B.dll", package / "A.dll");
  coreFX = {{"A.dll", kOrigin}};
  EXPECT_EQ(1, isUniqueDll(package / "A.dll", "A.dll"));
  EXPECT_TRUE(Holds(
      platform, {Source("platform_utils", "isRealPath").Error("Symbolic link is detected : %s", package / "A.dll")}));
  EXPECT_TRUE(IsThere(package / "A.dll"));
  EXPECT_TRUE(IsThere(package / "B.dll"));
}

FRESH_TEST(UniqueDll, a_dll_that_is_not_catalogued_is_kept) {
  const TempDir package;
  WriteFile(package / "A.dll");
  coreFX = {{"a.dll", "/x"}, {"A.ni.dll", "/x"}};
  EXPECT_EQ(1, isUniqueDll(package / "A.dll", "A.dll"));
  EXPECT_TRUE(Holds(platform, Steps{}));
  EXPECT_EQ(2u, coreFX.size());
  for (const auto* table : {&orvelFX, &coBA, &appLib}) EXPECT_TRUE(table->empty());
}

TEST(UniqueDll, a_duplicate_of_any_catalogue_is_removed) {
  for (auto* table : {&coreFX, &orvelFX, &coBA, &appLib}) {
    for (const char* name : {"A.dll", "A.ni.dll"}) {
      Fresh([&](Platform& platform) {
        const TempDir package;
        WriteFile(package / name);
        *table = {{name, kOrigin}};
        EXPECT_EQ(DuplicateLine(kOrigin, package / name),
                  StandardErrorOf([&] { EXPECT_EQ(0, isUniqueDll(package / name, name)); }));
        EXPECT_TRUE(Holds(platform, {DuplicateRemoved(kOrigin, package / name)}));
        EXPECT_FALSE(IsThere(package / name));
        EXPECT_EQ(InformationText(kOrigin, package / name), ReadFile(package / name + "_deleted"));
      });
    }
  }
}

TEST(UniqueDll, only_the_first_catalogue_that_holds_the_name_is_asked_and_names_the_origin) {
  for (int first = 0; first < 4; ++first) {
    Fresh([&](Platform& platform) {
      const TempDir package;
      const std::string dll = package / "A.dll";
      WriteFile(dll);
      Catalogue* const tables[] = {&coreFX, &orvelFX, &coBA, &appLib};
      for (int i = first; i < 4; ++i) *tables[i] = {{"A.dll", "/" + std::to_string(i) + "/A.dll"}};
      const std::string origin = tables[first]->at("A.dll");
      tables[first]->at("A.dll") = dll;
      EXPECT_EQ(1, isUniqueDll(dll, "A.dll"));
      EXPECT_TRUE(Holds(platform, {ComparedWithItself(dll)}));
      EXPECT_TRUE(IsThere(dll));
      tables[first]->at("A.dll") = origin;
      EXPECT_EQ(DuplicateLine(origin, dll), StandardErrorOf([&] { EXPECT_EQ(0, isUniqueDll(dll, "A.dll")); }));
    });
  }
}

FRESH_TEST(UniqueDll, a_duplicate_that_could_not_be_removed_counts_all_the_same) {
  const TempDir package;
  WriteFile(package / "A.dll/inside");
  coreFX = {{"A.dll", kOrigin}};
  StandardErrorOf([&] { EXPECT_EQ(0, isUniqueDll(package / "A.dll", "A.dll")); });
  EXPECT_TRUE(IsThere(package / "A.dll/inside"));
}

FRESH_TEST(UniqueDll, a_duplicate_of_a_read_write_copy_counts_and_stays) {
  const TempDir package;
  WriteFile(package / "A.dll");
  coBA = {{"A.dll", "/opt/usr/globalapps/c/shared/res/A.dll"}};
  StandardErrorOf([&] { EXPECT_EQ(0, isUniqueDll(package / "A.dll", "A.dll")); });
  EXPECT_TRUE(IsThere(package / "A.dll"));
  EXPECT_FALSE(IsThere(package / "A.dll_deleted"));
}

FRESH_TEST(UniqueDll, a_file_that_vanished_is_judged_by_its_name) {
  const TempDir package;
  coreFX = {{"A.dll", kOrigin}};
  StandardErrorOf([&] { EXPECT_EQ(0, isUniqueDll(package / "A.dll", "A.dll")); });
  EXPECT_TRUE(Holds(platform, {NotThereYet(), DuplicateRemoved(kOrigin, package / "A.dll")}));
}

}  // namespace
}  // namespace unit
