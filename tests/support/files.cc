// Files for tests.
#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace support {

namespace fs = std::filesystem;

TempDir::TempDir() {
  std::string pattern = testing::TempDir() + "orvel-test-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make a directory like " + pattern);
  path_ = pattern;
  chmod(pattern.c_str(), 0755);
}

TempDir::~TempDir() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

void WriteFile(const fs::path& file, const std::string& content) {
  fs::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  stream.close();
  if (!stream) throw std::runtime_error("cannot write " + file.string());
}

void WriteFiles(const std::vector<std::string>& files) {
  for (const std::string& file : files) WriteFile(file);
}

void MakePipe(const std::string& path) {
  if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("cannot make the pipe " + path);
}

void MakeSocket(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) throw std::runtime_error("too long for a socket: " + path);
  path.copy(address.sun_path, path.size());
  const int file = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int bound = bind(file, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  close(file);
  if (bound != 0) throw std::runtime_error("cannot make the socket " + path);
}

std::string ReadFile(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

bool IsThere(const fs::path& path) { return fs::symlink_status(path).type() != fs::file_type::not_found; }

ino_t InodeOf(const fs::path& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

std::vector<std::string> NamesIn(const fs::path& directory) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace support
