// Files for tests: a temporary directory, and helpers to write, read and list.
#ifndef TESTS_SUPPORT_FILES_H_
#define TESTS_SUPPORT_FILES_H_

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace support {

// A new directory that all users may enter. The destructor removes it with its content.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // The path of `name` inside, as a string.
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// Writes the file and creates its parent directories. Throws std::runtime_error on failure.
void WriteFile(const std::filesystem::path& file, const std::string& content = "");

// Writes empty files.
void WriteFiles(const std::vector<std::string>& files);

// Creates a named pipe, or a socket without a listener. Throws std::runtime_error.
void MakePipe(const std::string& path);
void MakeSocket(const std::string& path);

// The file's content. Throws std::runtime_error when it cannot be read.
std::string ReadFile(const std::filesystem::path& file);

// The lines of a text, each without its end.
std::vector<std::string> Lines(const std::string& text);

// Does the path exist? A dangling link exists too.
bool IsThere(const std::filesystem::path& path);

// The inode number of the file, which identifies it; 0 when it does not exist.
ino_t InodeOf(const std::filesystem::path& path);

// The names in the directory, sorted.
std::vector<std::string> NamesIn(const std::filesystem::path& directory);

}  // namespace support

#endif
