// Compares the built libraries with their lists, and the lists with the released prototypes.
#include "tests/abi/symbols.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace abi_guard {

// How GoogleTest prints a library.
static void PrintTo(const Library& library, std::ostream* stream) { *stream << library.name; }

namespace {

const Library kMorvath = {"libmorvath.so", MORVATH_LIBRARY, MORVATH_LIST, OBJECT_LISTS "/morvath_objects.txt"};
const Library kQuarnelUtil = {"libquarnel_util.so", QUARNEL_UTIL_LIBRARY, QUARNEL_UTIL_LIST,
                              OBJECT_LISTS "/quarnel_util_objects.txt"};

// Nobody can call the complete constructor of an abstract class, so clang omits it.
Names LeftOutByTheCompiler() {
#ifdef __clang__
  return {"_ZN14AotPathManagerC1Ev"};
#else
  return {};
#endif
}

// The names in `expected` that are missing in `present`.
Names Lost(const Names& expected, const Names& present) {
  return Without(Without(expected, present), LeftOutByTheCompiler());
}

class Interface : public testing::TestWithParam<Library> {
 protected:
  const Library& library() const { return GetParam(); }
  const Versions& versions() const { return versions_; }
  std::string Explained(const Names& names, const Difference& difference) const {
    return Describe(names, library().name, difference, versions_);
  }

  // Everything that was released in the library.
  Names Released() const {
    if (library().name == kQuarnelUtil.name) return Mentioned("quarnel_util_prototypes");
    Names names = Mentioned("morvath_prototypes");
    names.merge(TrackerMembers());
    for (const char* type : {"AotPathManager", "AppApiPath", "CoBAComponentPath", "DpcPath"}) {
      names.merge(PathManagerMembers(type));
    }
    return names;
  }

 private:
  Versions versions_ = ReadVersions(support::ReadFile(MORVATH_LIST));
};

TEST_P(Interface, has_a_version) {
  EXPECT_FALSE(versions().now.empty()) << MORVATH_LIST ": no line \"# interface 1.0\"";
}

TEST_P(Interface, the_library_shows_all_that_is_listed) {
  const Names lost = Lost(Listed(library()), support::Exports(library().file));
  EXPECT_TRUE(lost.empty()) << Explained(lost, kLost);
}

TEST_P(Interface, the_library_shows_nothing_that_is_not_listed) {
  const Names added = Without(support::Exports(library().file), Listed(library()));
  EXPECT_TRUE(added.empty()) << Explained(added, kAdded);
}

TEST_P(Interface, nothing_that_the_sources_export_was_forgotten_in_the_list) {
  const Names forgotten = Without(Defined(library()).strong, Listed(library()));
  EXPECT_TRUE(forgotten.empty()) << Explained(forgotten, kForgotten);
}

TEST_P(Interface, the_sources_export_all_that_is_listed) {
  const Definitions defined = Defined(library());
  const Names lost = Lost(Without(Listed(library()), defined.strong), defined.weak);
  EXPECT_TRUE(lost.empty()) << Explained(lost, kLost);
}

TEST_P(Interface, every_released_prototype_is_there_under_its_name) {
  const Names lost = Lost(Released(), support::Exports(library().file));
  EXPECT_TRUE(lost.empty()) << Explained(lost, kLost);
}

TEST_P(Interface, everything_listed_has_its_prototype_kept) {
  const Names unguarded = Without(Listed(library()), Released());
  EXPECT_TRUE(unguarded.empty()) << Explained(unguarded, kUnguarded);
}

// One list serves 32 and 64 bits, but the mangled names of std::size_t, std::uint64_t and similar types differ.
TEST_P(Interface, no_name_differs_by_processor) {
  for (const std::string& name : Listed(library())) {
    EXPECT_EQ(std::string::npos, InWords(name).find("long"))
        << name << ", " << InWords(name) << ": take int or unsigned";
  }
}

INSTANTIATE_TEST_SUITE_P(Libraries, Interface, testing::Values(kMorvath, kQuarnelUtil), [](const auto& test) {
  return test.param.name == kMorvath.name ? "morvath" : "quarnel_util";
});

// Other libraries define the platform's functions and those of the launcher utility library.
TEST(Symbols, the_platform_and_the_utility_library_are_left_to_others) {
  const Names imports = support::Imports(MORVATH_LIBRARY);
  EXPECT_THAT(imports, testing::IsSupersetOf(
                           {"__dlog_print", "trace_begin", "trace_end", "aul_restart_loader", "package_info_create",
                            "package_info_foreach_privilege_info", "package_info_destroy",
                            "pkgmgrinfo_appinfo_metadata_filter_create", "pkgmgrinfo_appinfo_metadata_filter_add",
                            "pkgmgrinfo_appinfo_metadata_filter_foreach", "pkgmgrinfo_appinfo_metadata_filter_destroy",
                            "pkgmgrinfo_appinfo_get_root_path", "ovplatform_getenv"}));
  EXPECT_EQ(Without(Listed(kQuarnelUtil), imports), Names{}) << "the plug-in calls all of the utility library";
  EXPECT_EQ(Without(Listed(kQuarnelUtil), support::Exports(MORVATH_LIBRARY)), Listed(kQuarnelUtil));
}

TEST(Symbols, the_utility_library_leaves_the_platform_to_others) {
  EXPECT_THAT(support::Imports(QUARNEL_UTIL_LIBRARY),
              testing::IsSupersetOf({"__dlog_print", "pkgmgrinfo_pkginfo_get_pkginfo",
                                     "pkgmgrinfo_pkginfo_destroy_pkginfo", "pkgmgrinfo_appinfo_get_root_path"}));
}

}  // namespace
}  // namespace abi_guard
