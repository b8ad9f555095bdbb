// What is said about a difference.
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

TEST(Names, what_was_lost_raises_the_first_number) {
  EXPECT_EQ(TellLost({"_Z1fv"}, "lib.so", kVersions),
            "lib.so lost f() [_Z1fv], which is part of the interface: tools that use it would no longer load. Bring it "
            "back; to give it up, take it off the library's list and out of tests/abi, and raise the first number of "
            "\"# interface\" in plugin/exported_symbols.txt (1.4 -> 2.0).\n");
}

TEST(Names, what_was_added_raises_the_second_number) {
  EXPECT_EQ(
      TellAdded({"_Z1fv"}, "lib.so", kVersions),
      "lib.so shows f() [_Z1fv], which is not on its list. Hide it; to make it part of the interface, list it and "
      "raise the second number of \"# interface\" in plugin/exported_symbols.txt (1.4 -> 1.5).\n");
}

TEST(Names, what_was_forgotten_is_listed_or_no_longer_marked) {
  EXPECT_EQ(
      TellForgotten({"_Z1fv", "g"}, "lib.so", kVersions),
      "lib.so hides f() [_Z1fv], which its source exports: it is not on the library's list. List it and raise the "
      "second number of \"# interface\" in plugin/exported_symbols.txt (1.4 -> 1.5); or take ORVEL_EXPORT away "
      "from it.\n"
      "lib.so hides g [g], which its source exports: it is not on the library's list. List it and raise the "
      "second number of \"# interface\" in plugin/exported_symbols.txt (1.4 -> 1.5); or take ORVEL_EXPORT away "
      "from it.\n");
}

TEST(Names, what_is_new_on_a_list_gets_its_prototype_kept) {
  EXPECT_EQ(TellUnguarded({"_Z1fv"}, "lib.so", kVersions),
            "lib.so has a new name on its list, f() [_Z1fv], whose prototype is not kept. Mention it in tests/abi, and "
            "raise the second number of \"# interface\" in plugin/exported_symbols.txt (1.4 -> 1.5).\n");
}

}  // namespace
}  // namespace abi_guard
