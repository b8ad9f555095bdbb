// The messages about differences.
#include "tests/abi/names.h"

#include <gtest/gtest.h>

namespace abi_guard {
namespace {

const Versions kVersions = {"1.4", "2.0", "1.5"};

TEST(Names, without_leaves_what_only_the_first_has) {
  EXPECT_EQ(Without({"a", "b", "c"}, {"b", "d"}), (Names{"a", "c"}));
}

TEST(Names, a_mangled_name_is_told_as_a_declaration) {
  EXPECT_EQ(InWords("_Z5isRPKRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"), "isRPK(std::string const&)");
  EXPECT_EQ(InWords("_ZTV7DpcPath"), "vtable for DpcPath");
}

TEST(Names, a_name_of_c_is_told_as_it_is) { EXPECT_EQ(InWords("PKGMGR_UNDO"), "PKGMGR_UNDO"); }

TEST(Names, the_version_is_read_and_raised) {
  const Versions versions = ReadVersions("# What it shows.\n# interface 1.9\n_Z1fv\n");
  EXPECT_EQ(versions.now, "1.9");
  EXPECT_EQ(versions.after_addition, "1.10");
  EXPECT_EQ(versions.after_break, "2.0");
}

TEST(Names, a_list_without_a_version_has_none) {
  EXPECT_EQ(ReadVersions("# an interface 1.9\n# interface one\n").now, "");
}

TEST(Names, each_that_differs_is_told_with_the_way_out_and_the_version_after_it) {
  EXPECT_EQ(Describe({"_Z1fv"}, "lib.so", {" did ", ", which is bad. Mend it", true}, kVersions),
            "lib.so did f() [_Z1fv], which is bad. Mend it, and raise the first number of \"# interface\" in "
            "plugin/exported_symbols.txt (1.4 -> 2.0).\n");
  EXPECT_EQ(Describe({"g", "h"}, "lib.so", {" did ", "", false}, kVersions),
            "lib.so did g [g], and raise the second number of \"# interface\" in plugin/exported_symbols.txt (1.4 -> "
            "1.5).\nlib.so did h [h], and raise the second number of \"# interface\" in plugin/exported_symbols.txt "
            "(1.4 -> 1.5).\n");
}

}  // namespace
}  // namespace abi_guard
