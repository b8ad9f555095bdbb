// Unpacking archives: the resulting files, and nothing from a refused one.
#include <sys/stat.h>

#include "orvelbox/desk/tree.h"
#include "orvelbox/package/source.h"
#include "tests/orvelbox/frame.h"
#include "tests/support/zip.h"

namespace orvelbox {
namespace {

class UnpackTest : public DirectoryTest {
 protected:
  std::string Archive(const std::vector<support::ZipEntry>& entries) const {
    WriteFile(dir_ / "a.opk", support::ZipOf(entries));
    return dir_ / "a.opk";
  }
};

TEST_F(UnpackTest, files_stand_in_their_directories_with_their_permissions) {
  Unpack(Archive({{"empty/", ""}, {"bin/run", "x", S_IFREG | S_ISUID | 0755}, {"bin/closed", "y", S_IFREG | 0044}}),
         dir_ / "to");
  EXPECT_TRUE(fs::is_directory(dir_ / "to/empty"));
  EXPECT_EQ(ReadFile(dir_ / "to/bin/run"), "x");
  EXPECT_EQ(fs::status(dir_ / "to/bin/run").permissions(), fs::perms{0755});
  EXPECT_EQ(fs::status(dir_ / "to/bin/closed").permissions(), fs::perms{0644});
}

TEST_F(UnpackTest, a_refused_archive_leaves_nothing) {
  EXPECT_THROW(Unpack(Archive({{"good", "1"}, {"../bad", "2"}}), dir_ / "to"), host::DeviceError);
  EXPECT_EQ(support::NamesIn(dir_.path()), std::vector<std::string>{"a.opk"});
}

TEST_F(UnpackTest, nothing_is_unpacked_through_what_stands_there_already) {
  WriteFile(dir_ / "outside", "precious");
  fs::create_directory(dir_ / "to");
  fs::create_symlink(dir_ / "outside", dir_ / "to/a");
  EXPECT_THROW(Unpack(Archive({{"a", "1"}}), dir_ / "to"), host::DeviceError);
  EXPECT_EQ(ReadFile(dir_ / "outside"), "precious");
}

TEST_F(UnpackTest, what_is_no_file_is_refused) {
  mkfifo((dir_ / "pipe").c_str(), 0600);
  EXPECT_THROW(Unpack(dir_ / "pipe", dir_ / "to"), host::DeviceError);
  EXPECT_FALSE(IsThere(dir_ / "to"));
}

}  // namespace
}  // namespace orvelbox
