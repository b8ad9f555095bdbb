// Whole files: what is said when they cannot be read or written.
#include "platform/host/files.h"

#include <cerrno>
#include <cstring>

#include "tests/host/frame.h"

namespace host_tests {
namespace {

class Files : public DirectoryTest {
 protected:
  fs::path Path(const char* name) const { return directory() / name; }
  std::string Named(const char* name, const std::string& what, int error) const {
    return Path(name).string() + ": cannot " + what + ": " + std::strerror(error);
  }
};

TEST_F(Files, that_cannot_be_read_or_made_are_named) {
  EXPECT_EQ(Named("none", "read", ENOENT), ErrorOf([&] { host::ReadFile(Path("none")); }));
  EXPECT_EQ(Named("", "read", EISDIR), ErrorOf([&] { host::ReadFile(Path("")); }));
  WriteFile(Path("file"), "x");
  EXPECT_EQ(Named("file", "create", EEXIST), ErrorOf([&] { host::CreateFile(Path("file"), "y"); }));
  EXPECT_EQ(Named("file/below", "make the directory", ENOTDIR),
            ErrorOf([&] { host::MakeDirectory(Path("file/below")); }));
  fs::create_directory(Path("directory"));
  EXPECT_EQ(Named("directory", "replace", EISDIR), ErrorOf([&] { host::ReplaceFile(Path("directory"), "y"); }));
  EXPECT_THAT(support::NamesIn(directory()), ElementsAre("directory", "file"));
}

TEST_F(Files, errors_of_the_standard_library_are_told_alike) {
  const auto error_of = [&](const fs::path& named) {
    return ErrorOf([&] {
      host::WithFileErrors(Path("given"), "list", [&] {
        throw fs::filesystem_error("text", named, std::error_code(ENOTDIR, std::generic_category()));
      });
    });
  };
  EXPECT_EQ(Named("named", "list", ENOTDIR), error_of(Path("named")));
  EXPECT_EQ(Named("given", "list", ENOTDIR), error_of({}));
}

TEST_F(Files, errors_with_a_usual_way_out_tell_it) {
  const auto error_of = [&](int error) { return ErrorOf([&] { host::ThrowFileError(Path("x"), "write", error); }); };
  for (const int error : {ENOSPC, EDQUOT}) {
    EXPECT_EQ(Named("x", "write", error) + "; free some space and try again", error_of(error));
  }
  for (const int error : {EACCES, EPERM, EROFS}) {
    EXPECT_EQ(Named("x", "write", error) + "; check the permissions there", error_of(error));
  }
  EXPECT_EQ(Named("x", "write", EIO), error_of(EIO));
}

}  // namespace
}  // namespace host_tests
