// Copying the label and owner of an assembly file to another.
#include <malloc.h>
#include <unistd.h>

#include <cerrno>

#include "morvath/assembly_files.h"
#include "tests/support/unit_case.h"
#include "tests/unit/interposed_files.h"

namespace unit {
namespace {

constexpr const char* kLabelMessage = "Fail to set smack label\n";
constexpr const char* kOwnerMessage = "Failed to change owner and group name\n";

// No owner really changes: the owners are invented, and changes are only recorded.
class AssemblyInfo : public testing::Test {
 protected:
  static constexpr const char* kLabel = "User::App::Shared";

  AssemblyInfo() {
    interposed::Files() = {};
    WriteFile(source_);
    platform_.labels[source_] = kLabel;
    SetOwner(source_);
  }
  ~AssemblyInfo() override { interposed::Files() = {}; }

  static void SetOwner(const std::string& path) { interposed::Files().owners[path] = {1234, 567}; }

  // The output on standard error while the info is copied.
  std::string Update(bool is_symlink) const {
    return StandardErrorOf([&] { updateAssemblyInfo(source_, target_, is_symlink); });
  }
  // Copies the info to a file and to a link.
  void ExpectBothWays(const std::string& told) const {
    for (const bool is_symlink : {false, true}) EXPECT_EQ(told, Update(is_symlink));
  }

  Steps LabelRead(const std::string& function) const { return Call(function + "(" + source_ + ")"); }
  Steps LabelSet(const std::string& function, const std::string& label = kLabel) const {
    return Call(function + "(" + target_ + ", " + label + ")");
  }
  Steps OwnerSet(const std::string& function) const { return Call(function + "(" + target_ + ", 1234, 567)"); }
  Steps FileInfo() const { return Join({LabelRead("smack_getlabel"), LabelSet("smack_setlabel"), OwnerSet("chown")}); }
  Steps LinkInfo() const {
    return Join({LabelRead("smack_lgetlabel"), LabelSet("smack_lsetlabel"), OwnerSet("lchown")});
  }

  Platform& platform_ = doubles::Reset();
  const TempDir directory_;
  const std::string source_ = directory_ / "source.dll";
  const std::string target_ = directory_ / "target.dll";
};

TEST_F(AssemblyInfo, a_file_gets_the_label_and_then_owner_and_group) {
  EXPECT_EQ("", Update(false));
  EXPECT_TRUE(Holds(platform_, FileInfo()));
}

TEST_F(AssemblyInfo, a_link_gets_the_label_and_then_owner_and_group_itself) {
  EXPECT_EQ("", Update(true));
  EXPECT_TRUE(Holds(platform_, LinkInfo()));
}

TEST_F(AssemblyInfo, an_empty_label_is_copied_like_any_other) {
  platform_.labels[source_] = "";
  ExpectBothWays("");
  EXPECT_TRUE(Holds(platform_, {LabelRead("smack_getlabel"), LabelSet("smack_setlabel", ""), OwnerSet("chown"),
                                LabelRead("smack_lgetlabel"), LabelSet("smack_lsetlabel", ""), OwnerSet("lchown")}));
}

TEST_F(AssemblyInfo, a_label_that_cannot_be_read_is_skipped_silently_and_the_owner_is_still_copied) {
  platform_.labels.clear();
  ExpectBothWays("");
  EXPECT_TRUE(Holds(
      platform_, {LabelRead("smack_getlabel"), OwnerSet("chown"), LabelRead("smack_lgetlabel"), OwnerSet("lchown")}));
}

TEST_F(AssemblyInfo, a_label_that_cannot_be_set_shows_on_standard_error_and_the_owner_is_still_copied) {
  for (const int code : {-1, -38}) {
    platform_.journal.clear();
    platform_.FailNext("smack_setlabel", code);
    platform_.FailNext("smack_lsetlabel", code);
    ExpectBothWays(kLabelMessage);
    EXPECT_TRUE(Holds(platform_, {FileInfo(), LinkInfo()}));
  }
}

TEST_F(AssemblyInfo, any_answer_to_setting_a_label_that_is_not_negative_is_success) {
  platform_.FailNext("smack_setlabel", 1);
  platform_.FailNext("smack_lsetlabel", 1);
  ExpectBothWays("");
}

TEST_F(AssemblyInfo, an_owner_that_cannot_be_set_shows_on_standard_error) {
  interposed::Files().owner_change_error = EPERM;
  ExpectBothWays(kOwnerMessage);
  EXPECT_TRUE(Holds(platform_, {FileInfo(), LinkInfo()}));
}

TEST_F(AssemblyInfo, both_failures_show_in_order) {
  interposed::Files().owner_change_error = EPERM;
  platform_.FailNext("smack_setlabel", -1);
  EXPECT_EQ(std::string(kLabelMessage) + kOwnerMessage, Update(false));
}

TEST_F(AssemblyInfo, a_source_that_is_not_there_or_dangles_still_gives_its_label_but_no_owner) {
  fs::remove(source_);
  for (const bool dangling : {false, true}) {
    if (dangling) fs::create_symlink("nowhere", source_);
    platform_.journal.clear();
    ExpectBothWays("");
    EXPECT_TRUE(Holds(platform_, {LabelRead("smack_getlabel"), LabelSet("smack_setlabel"), LabelRead("smack_lgetlabel"),
                                  LabelSet("smack_lsetlabel")}));
  }
}

TEST_F(AssemblyInfo, the_owner_is_that_of_the_file_behind_a_link_in_either_mode) {
  fs::rename(source_, directory_ / "file.dll");
  fs::create_symlink("file.dll", source_);
  platform_.journal.clear();
  ExpectBothWays("");
  EXPECT_TRUE(Holds(platform_, {FileInfo(), LinkInfo()}));
}

TEST_F(AssemblyInfo, every_label_that_was_read_is_freed) {
  constexpr std::size_t kSize = std::size_t{1} << 20;
  platform_.labels[source_] = std::string(kSize, 'x');
  const auto in_use = [] {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
  };
  const auto update_all_ways = [&] {
    for (const bool is_symlink : {false, true}) {
      platform_.FailNext("smack_setlabel", -1);
      platform_.FailNext("smack_lsetlabel", -1);
      EXPECT_EQ(kLabelMessage, Update(is_symlink));
      EXPECT_EQ("", Update(is_symlink));
      platform_.journal.clear();
    }
  };
  update_all_ways();
  const std::size_t before = in_use();
  for (int i = 0; i < 3; ++i) update_all_ways();
  EXPECT_LT(in_use(), before + kSize);
}

}  // namespace
}  // namespace unit
