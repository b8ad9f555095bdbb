// The label library.
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "orvel/smack.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

class Labels : public DirectoryTest {
 protected:
  Labels() {
    WriteFile(file(), "x");
    std::filesystem::create_symlink("file", link());
  }
  std::string file() const { return (directory() / "file").string(); }
  std::string link() const { return (directory() / "link").string(); }
  // Skips if ordinary users cannot set labels on this file system.
  void SetUp() override {
    if (setxattr(file().c_str(), "user.probe", "x", 1, 0) != 0) GTEST_SKIP() << "no user.* attributes in " << file();
  }

  static std::string Read(const std::string& path) {
    char* label = nullptr;
    const ssize_t length = smack_getlabel(path.c_str(), &label, SMACK_LABEL_ACCESS);
    if (length < 0) return "none";
    const std::string text = label;
    free(label);
    EXPECT_EQ(static_cast<ssize_t>(text.size()), length);
    return text;
  }
  static int Set(const std::string& path, const std::string& label) {
    return smack_setlabel(path.c_str(), label.c_str(), SMACK_LABEL_ACCESS);
  }
  // Gives the test's files to the ordinary user that this process becomes.
  void BecomeOrdinaryUser() const {
    if (geteuid() == 0) {
      ASSERT_EQ(0, chown(file().c_str(), 65534, 65534));
    }
    machine::BecomeOrdinaryUser();
  }
};

TEST_F(Labels, a_label_is_read_back) {
  EXPECT_EQ(0, Set(file(), "User::Pkg"));
  EXPECT_EQ("User::Pkg", Read(file()));
  EXPECT_EQ(0, Set(file(), "_"));
  EXPECT_EQ("_", Read(file()));
}

TEST_F(Labels, a_file_without_a_label_has_none) {
  EXPECT_EQ("none", Read(file()));
  EXPECT_EQ("none", Read(file() + "-missing"));
  EXPECT_LT(Set(file() + "-missing", "x"), 0);
}

TEST_F(Labels, an_ordinary_user_labels_through_a_user_attribute) {
  support::InFreshProcess([&] {
    BecomeOrdinaryUser();
    ASSERT_EQ(0, Set(file(), "mine"));
    char value[16] = {};
    EXPECT_EQ(4, getxattr(file().c_str(), "user.SMACK64", value, sizeof value));
    EXPECT_STREQ("mine", value);
    EXPECT_EQ("mine", Read(file()));
  });
}

TEST_F(Labels, the_security_attribute_comes_first_and_is_not_hidden_by_the_other) {
  if (setxattr(file().c_str(), "security.SMACK64", "first", 5, 0) != 0) {
    GTEST_SKIP() << "this user may not set security.SMACK64";
  }
  ASSERT_EQ(0, setxattr(file().c_str(), "user.SMACK64", "second", 6, 0));
  EXPECT_EQ("first", Read(file()));
  support::InFreshProcess([&] {
    BecomeOrdinaryUser();
    EXPECT_LT(Set(file(), "third"), 0);
    EXPECT_EQ(EPERM, errno);
    EXPECT_EQ("first", Read(file()));
  });
}

TEST_F(Labels, an_empty_security_attribute_is_a_label) {
  if (setxattr(file().c_str(), "security.SMACK64", "", 0, 0) != 0) {
    GTEST_SKIP() << "this user may not set security.SMACK64";
  }
  ASSERT_EQ(0, setxattr(file().c_str(), "user.SMACK64", "second", 6, 0));
  errno = ENODATA;
  EXPECT_EQ("", Read(file()));
}

TEST_F(Labels, a_link_and_its_file_have_labels_of_their_own) {
  ASSERT_EQ(0, Set(link(), "of-the-file"));
  EXPECT_EQ("of-the-file", Read(file()));
  if (smack_lsetlabel(link().c_str(), "of-the-link", SMACK_LABEL_ACCESS) != 0) {
    EXPECT_EQ(EPERM, errno);  // ordinary users cannot label links
    return;
  }
  char* label = nullptr;
  EXPECT_EQ(11, smack_lgetlabel(link().c_str(), &label, SMACK_LABEL_ACCESS));
  EXPECT_STREQ("of-the-link", label);
  free(label);
  EXPECT_EQ("of-the-file", Read(link()));
}

TEST_F(Labels, the_link_forms_label_plain_files_too) {
  EXPECT_EQ(0, smack_lsetlabel(file().c_str(), "plain", SMACK_LABEL_ACCESS));
  char* label = nullptr;
  EXPECT_EQ(5, smack_lgetlabel(file().c_str(), &label, SMACK_LABEL_ACCESS));
  EXPECT_STREQ("plain", label);
  free(label);
}

TEST_F(Labels, a_label_has_at_most_255_bytes) {
  EXPECT_EQ(0, Set(file(), std::string(255, 'x')));
  EXPECT_EQ(std::string(255, 'x'), Read(file()));
  EXPECT_LT(Set(file(), std::string(256, 'x')), 0);
  EXPECT_LT(Set(file(), ""), 0);
}

TEST_F(Labels, null_arguments_and_other_types_are_refused) {
  char* label = nullptr;
  EXPECT_LT(smack_setlabel(nullptr, "x", SMACK_LABEL_ACCESS), 0);
  EXPECT_LT(smack_setlabel(file().c_str(), nullptr, SMACK_LABEL_ACCESS), 0);
  EXPECT_LT(smack_lsetlabel(nullptr, "x", SMACK_LABEL_ACCESS), 0);
  EXPECT_LT(smack_getlabel(nullptr, &label, SMACK_LABEL_ACCESS), 0);
  EXPECT_LT(smack_lgetlabel(file().c_str(), nullptr, SMACK_LABEL_ACCESS), 0);
  EXPECT_LT(smack_setlabel(file().c_str(), "x", static_cast<smack_label_type>(1)), 0);
  EXPECT_EQ("none", Read(file()));
}

}  // namespace
}  // namespace host_tests
