// The buffer between a file and its readers.
#include "orvelbox/desk/bytes.h"

#include <fcntl.h>

#include "base/unique_fd.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

class FileBytesTest : public DirectoryTest {
 protected:
  FileBytesTest() {
    WriteFile(dir_ / "file", "0123456789");
    file_ = UniqueFd(open((dir_ / "file").c_str(), O_RDONLY | O_CLOEXEC));
  }

  UniqueFd file_;
};

TEST_F(FileBytesTest, a_window_is_read_once) {
  FileBytes bytes(file_.get(), 4);
  EXPECT_EQ(bytes.Read(2, 2), "23");
  WriteFile(dir_ / "file", "abcdefghij");
  EXPECT_EQ(bytes.Read(2, 4), "2345");
  EXPECT_EQ(bytes.Read(5, 1), "5");
  EXPECT_EQ(bytes.Read(6, 0), "");
  EXPECT_EQ(bytes.Read(5, 2), "fg") << "beyond the window";
  EXPECT_EQ(bytes.Read(1, 1), "b") << "before it";
}

TEST_F(FileBytesTest, more_than_the_window_is_read_at_once) {
  EXPECT_EQ(FileBytes(file_.get(), 4).Read(1, 9), "123456789");
}

TEST_F(FileBytesTest, what_lies_beyond_the_end_is_none) {
  FileBytes bytes(file_.get(), 4);
  EXPECT_THROW(bytes.Read(9, 2), BeyondBytes);
  EXPECT_THROW(bytes.Read(UINT64_MAX, 1), BeyondBytes);
  EXPECT_EQ(bytes.Read(9, 1), "9");
}

TEST_F(FileBytesTest, a_file_that_cannot_be_read_is_an_error) {
  EXPECT_THROW(FileBytes(-1, 4).Read(0, 1), std::system_error);
  EXPECT_EQ(FileBytes(-1, 4).Read(0, 0), "") << "nothing is read for nothing";
}

}  // namespace
}  // namespace orvelbox
