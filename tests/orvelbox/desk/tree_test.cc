// Copying and removing trees.
#include "orvelbox/desk/tree.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

class TreeTest : public DirectoryTest {};

TEST_F(TreeTest, a_copy_has_the_contents_and_permissions) {
  WriteFile(dir_ / "from/deep/file", std::string("a\0b", 3));
  fs::permissions(dir_ / "from/deep/file", fs::perms::owner_all | fs::perms::set_uid);
  CopyTree(dir_ / "from", dir_ / "to");
  EXPECT_EQ(ReadFile(dir_ / "to/deep/file"), std::string("a\0b", 3));
  EXPECT_EQ(fs::status(dir_ / "to/deep/file").permissions(), fs::perms::owner_all);
}

TEST_F(TreeTest, a_read_only_directory_is_copied_and_its_copy_can_be_removed) {
  WriteFile(dir_ / "from/closed/file", "x");
  fs::permissions(dir_ / "from/closed", fs::perms::owner_read | fs::perms::owner_exec);
  CopyTree(dir_ / "from", dir_ / "to");
  EXPECT_EQ(fs::status(dir_ / "to/closed").permissions(), fs::perms::owner_all);
  RemoveTree(dir_ / "to");
  EXPECT_FALSE(IsThere(dir_ / "to"));
  fs::permissions(dir_ / "from/closed", fs::perms::owner_all);
}

TEST_F(TreeTest, links_are_neither_followed_by_a_copy_nor_by_a_removal) {
  WriteFile(dir_ / "outside/file", "precious");
  fs::create_directory(dir_ / "from");
  fs::create_directory_symlink(dir_ / "outside", dir_ / "from/link");
  CopyTree(dir_ / "from", dir_ / "to");
  EXPECT_TRUE(fs::is_symlink(dir_ / "to/link"));
  RemoveTree(dir_ / "to");
  EXPECT_EQ(ReadFile(dir_ / "outside/file"), "precious");
}

TEST_F(TreeTest, a_copy_into_what_is_there_adds_and_replaces) {
  WriteFile(dir_ / "from/both", "new");
  WriteFile(dir_ / "to/both", "old");
  WriteFile(dir_ / "to/own", "own");
  CopyTree(dir_ / "from", dir_ / "to");
  EXPECT_EQ(ReadFile(dir_ / "to/both"), "new");
  EXPECT_EQ(ReadFile(dir_ / "to/own"), "own");
}

TEST_F(TreeTest, a_copy_into_itself_is_refused) {
  fs::create_directory(dir_ / "from");
  EXPECT_EQ(ErrorOf([&] { CopyTree(dir_ / "from", dir_ / "from/inside/to"); }),
            dir_ /
                "from: holds the device itself, which would be copied into itself; use a device outside of it with "
                "--device");
  EXPECT_FALSE(IsThere(dir_ / "from/inside"));
}

TEST_F(TreeTest, a_socket_or_pipe_is_refused_by_name) {
  fs::create_directory(dir_ / "from");
  ASSERT_EQ(mkfifo((dir_ / "from/pipe").c_str(), 0600), 0);
  EXPECT_EQ(ErrorOf([&] { CopyTree(dir_ / "from", dir_ / "to"); }),
            dir_ / "from/pipe: is no file, directory or symbolic link; take it out of the directory");
}

TEST_F(TreeTest, what_cannot_be_copied_moved_or_removed_is_named) {
  const std::string none = std::strerror(ENOENT);
  EXPECT_EQ(ErrorOf([&] { CopyTree(dir_ / "none", dir_ / "to"); }), dir_ / "none: cannot copy: " + none);
  EXPECT_EQ(ErrorOf([&] { Move(dir_ / "none", dir_ / "to"); }), dir_ / "none: cannot move: " + none);
  WriteFile(dir_ / "file", "x");
  EXPECT_EQ(ErrorOf([&] { RemoveTree(dir_ / "file/below"); }),
            dir_ / "file/below: cannot remove: " + std::strerror(ENOTDIR));
}

TEST_F(TreeTest, removing_nothing_is_no_error) { RemoveTree(dir_ / "nothing"); }

TEST_F(TreeTest, a_dangling_link_is_there) {
  fs::create_symlink("nowhere", dir_ / "link");
  EXPECT_TRUE(IsThere(dir_ / "link"));
  EXPECT_FALSE(IsThere(dir_ / "nowhere"));
}

}  // namespace
}  // namespace orvelbox
