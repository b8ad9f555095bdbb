// Whole files, read and written.
#include "platform/host/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "base/affix.h"
#include "base/unique_fd.h"
#include "platform/host/device_error.h"

namespace host {
namespace {

// The name of a new version while it is written: the file's name, this, and the number of the process.
constexpr const char* kUnfinished = ".new-";

// Creates the file; with `sync`, waits until it is on the disk.
void CreateWith(const std::filesystem::path& file, std::string_view content, bool sync) {
  const UniqueFd fd(open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!fd) ThrowFileError(file, "create", errno);
  int error = WriteAll(fd.get(), content);
  if (error == 0 && sync && fsync(fd.get()) != 0) error = errno;
  if (error == 0) return;
  unlink(file.c_str());
  ThrowFileError(file, "write", error);
}

}  // namespace

std::string ErrorText(int error) { return std::generic_category().message(error); }

std::string_view UsualWayOut(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      return "; free some space and try again";
    case EACCES:
    case EPERM:
    case EROFS:
      return "; check the permissions there";
    default:
      return "";
  }
}

void ThrowFileError(const std::filesystem::path& file, std::string_view action, int error) {
  std::string text = file.string() + ": cannot ";
  text.append(action).append(": ").append(ErrorText(error)).append(UsualWayOut(error));
  throw DeviceError(text);
}

std::string ReadFile(const std::filesystem::path& file) {
  const UniqueFd fd(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd) ThrowFileError(file, "read", errno);
  std::string content;
  if (const int error = ReadToEnd(fd.get(), content)) ThrowFileError(file, "read", error);
  return content;
}

int ReadToEnd(int fd, std::string& content) {
  std::array<char, 65536> buffer;
  for (;;) {
    const ssize_t count = read(fd, buffer.data(), buffer.size());
    if (count == 0) return 0;
    if (count > 0) content.append(buffer.data(), static_cast<size_t>(count));
    if (count < 0 && errno != EINTR) return errno;
  }
}

std::string ReadFromStart(int fd) {
  std::string content;
  lseek(fd, 0, SEEK_SET);
  ReadToEnd(fd, content);
  return content;
}

int WriteAll(int fd, std::string_view data) {
  while (!data.empty()) {
    const ssize_t count = write(fd, data.data(), data.size());
    if (count < 0 && errno != EINTR) return errno;
    if (count > 0) data.remove_prefix(static_cast<size_t>(count));
  }
  return 0;
}

void CreateFile(const std::filesystem::path& file, std::string_view content) { CreateWith(file, content, false); }

void MakeDirectory(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) ThrowFileError(path, "make the directory", error.value());
}

void ReplaceFile(const std::filesystem::path& file, std::string_view content) {
  std::filesystem::path fresh = file;
  fresh += kUnfinished + std::to_string(getpid());
  unlink(fresh.c_str());  // left by an earlier process with the same id
  CreateWith(fresh, content, true);
  if (rename(fresh.c_str(), file.c_str()) == 0) return;
  const int error = errno;
  unlink(fresh.c_str());
  ThrowFileError(file, "replace", error);
}

void RemoveUnfinished(const std::filesystem::path& file) {
  const std::string prefix = file.filename().string() + kUnfinished;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(file.parent_path(), ignored)) {
    if (HasPrefix(entry.path().filename().native(), prefix)) std::filesystem::remove(entry.path(), ignored);
  }
}

}  // namespace host
