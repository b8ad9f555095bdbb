// The four catalogues and the two operations on them.
#include "plugin/catalogues.h"

#include "tests/support/unit_case.h"

namespace unit {
namespace {

TEST(Catalogues, all_four_are_empty_at_first) {
  for (const Catalogue* catalogue : {&coreFX, &orvelFX, &coBA, &appLib}) EXPECT_TRUE(catalogue->empty());
}

TEST(Catalogues, the_first_path_of_a_name_wins) {
  Platform& platform = doubles::Reset();
  Catalogue catalogue;
  insertItem(catalogue, "A.dll", "/first/A.dll");
  insertItem(catalogue, "A.dll", "/second/A.dll");
  EXPECT_EQ((Catalogue{{"A.dll", "/first/A.dll"}}), catalogue);
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(Catalogues, names_are_kept_exactly) {
  Catalogue catalogue;
  const Catalogue entries = {{"A.dll", "1"},  {"a.dll", "2"}, {"A.ni.dll", "3"}, {"A", "4"},
                             {"A.dll ", "5"}, {"", "6"},      {"A.json", "7"}};
  for (const auto& [name, path] : entries) insertItem(catalogue, name, path);
  EXPECT_EQ(entries, catalogue);
}

TEST(Catalogues, the_path_found_is_logged_not_the_name) {
  Platform& platform = doubles::Reset();
  const Catalogue catalogue = {{"A.dll", "/usr/A.dll"}};
  EXPECT_TRUE(isExistInList(catalogue, "A.dll"));
  EXPECT_TRUE(Holds(platform, {Plugin("isExistInList").Debug("Found %s", "/usr/A.dll")}));
}

TEST(Catalogues, an_absent_name_logs_nothing) {
  Platform& platform = doubles::Reset();
  const Catalogue catalogue = {{"A.dll", "/usr/A.dll"}};
  for (const char* name : {"a.dll", "A.ni.dll", "A", "", "/usr/A.dll", "A.dll "}) {
    EXPECT_FALSE(isExistInList(catalogue, name)) << name;
  }
  EXPECT_FALSE(isExistInList(Catalogue{}, "A.dll"));
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(Catalogues, an_entry_with_an_empty_path_is_found_and_survives) {
  Platform& platform = doubles::Reset();
  Catalogue catalogue;
  insertItem(catalogue, "A.dll", "");
  insertItem(catalogue, "A.dll", "/usr/A.dll");
  EXPECT_EQ((Catalogue{{"A.dll", ""}}), catalogue);
  EXPECT_TRUE(isExistInList(catalogue, "A.dll"));
  EXPECT_TRUE(Holds(platform, {Plugin("isExistInList").Debug("Found %s", "")}));
}

}  // namespace
}  // namespace unit
