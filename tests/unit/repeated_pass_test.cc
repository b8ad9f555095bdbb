// The state that the pass keeps from one package to the next.
#include "plugin/catalogues.h"
#include "tests/unit/pass_case.h"

namespace unit {
namespace {

Steps AlreadyRun(const std::string& id) {
  return TracedPlugin("int gac(const std::string&)", Plugin("gac").Info("GAC already run for same pkgId (%s)", id));
}

DEVICE_TEST(AssemblyCache, the_same_package_in_a_row_is_not_passed_over_again) {
  PutPackage(platform);
  WriteFiles({Core("A.dll"), InPackage("A.dll")});
  EXPECT_EQ(-1, RunPass("pkg"));
  WriteFiles({InPackage("A.dll"), Core("B.dll")});
  platform.journal.clear();
  EXPECT_EQ("### INSTALL : morvath, GAC already run for same pkgId : pkg\n",
            StandardErrorOf([] { EXPECT_EQ(0, gac("pkg")); }));
  EXPECT_TRUE(Holds(platform, {AlreadyRun("pkg")}));
  EXPECT_TRUE(platform.Calls("").empty());
  EXPECT_TRUE(IsThere(InPackage("A.dll")));
  EXPECT_EQ(1u, coreFX.size());
}

DEVICE_TEST(AssemblyCache, a_pass_that_failed_is_remembered_too) {
  EXPECT_EQ(-1, RunPass("pkg"));
  PutPackage(platform);
  platform.journal.clear();
  EXPECT_EQ(0, RunPass("pkg"));
  EXPECT_TRUE(Holds(platform, {AlreadyRun("pkg")}));
}

DEVICE_TEST(AssemblyCache, packages_in_turn_are_each_passed_over) {
  PutPackage(platform, "A", "/opt/usr/apps/A");
  PutPackage(platform, "B", "/opt/usr/apps/B");
  for (const char* id : {"A", "B", "A"}) {
    platform.journal.clear();
    EXPECT_EQ(0, gac(id));
    EXPECT_TRUE(Holds(platform, {Pass(0, 0)})) << id;
  }
}

DEVICE_TEST(AssemblyCache, ids_that_differ_in_any_byte_are_different_packages) {
  for (const char* id : {"pkg", "PKG", "pkg ", "pk", "pkg2"}) {
    platform.journal.clear();
    RunPass(id);
    EXPECT_LT(4u, platform.Messages().size()) << id;
  }
}

FRESH_TEST(AssemblyCache, a_first_call_with_an_empty_id_counts_as_already_run) {
  EXPECT_EQ("### INSTALL : morvath, GAC already run for same pkgId : \n",
            StandardErrorOf([] { EXPECT_EQ(0, gac("")); }));
  EXPECT_TRUE(Holds(platform, {AlreadyRun("")}));
}

DEVICE_TEST(AssemblyCache, an_empty_id_after_another_package_is_passed_over) {
  RunPass("pkg");
  EXPECT_EQ("### INSTALL : morvath, pkgRoot is empty : \n", StandardErrorOf([] { EXPECT_EQ(-1, gac("")); }));
}

DEVICE_TEST(AssemblyCache, catalogues_are_kept_between_packages) {
  PutPackage(platform, "first", "/opt/usr/apps/first");
  PutPackage(platform, "second", "/opt/usr/apps/second");
  const std::string library = "/opt/usr/apps/first/lib/L.dll";
  const std::string copy = "/opt/usr/apps/second/lib/L.dll";
  WriteFiles({library, copy, Core("A.dll"), "/opt/usr/apps/second/bin/A.dll"});
  EXPECT_EQ(0, gac("first"));
  fs::remove(Core("A.dll"));
  const std::string standard_error = StandardErrorOf([] { EXPECT_EQ(-1, gac("second")); });
  EXPECT_NE(std::string::npos, standard_error.find(DuplicateLine(library, copy)));
  EXPECT_NE(std::string::npos, standard_error.find(DuplicateLine(Core("A.dll"), "/opt/usr/apps/second/bin/A.dll")));
  EXPECT_FALSE(IsThere(copy));
  EXPECT_EQ((Catalogue{{"L.dll", library}}), appLib);
}

}  // namespace
}  // namespace unit
