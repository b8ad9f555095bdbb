// Whole files read, and replaced durably.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/log_texts.h"
#include "base/unique_fd.h"
#include "morvath/platform_utils.h"
#include "util/platform_utils/log_source.h"

namespace {

// Line fields of writeStringToFile's messages: log readers key on them, so they stay wherever the statements go.
constexpr int kOpenErrorLine = 163;
constexpr int kSaveFileLine = 173;
constexpr int kSavedLine = 177;

// More than any text that is written here comes to. A file may claim a size that no memory holds.
constexpr off_t kMostBytesRead = off_t{128} << 20;

// The temporary file's name may be taken by what would take the text elsewhere: a file that has another name as well,
// a pipe or a device. Such a thing is removed; a directory stays, and opening it will fail; what is left of an earlier
// write stays and is used again.
void FreeTemporaryName(const std::string& path) {
  struct stat status;
  if (lstat(path.c_str(), &status) == 0 && (!S_ISREG(status.st_mode) || status.st_nlink > 1)) unlink(path.c_str());
}

UniqueFd OpenForReading(const std::string& path) {
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOCTTY;
  // Not blocking, so that a pipe in the file's place cannot hold up the caller.
  const int file = open(path.c_str(), kFlags | O_NONBLOCK);
  if (file >= 0 || errno != EWOULDBLOCK) return UniqueFd(file);
  // Somebody holds a lease on the file and is waited for; a pipe that takes its name meanwhile is not.
  const UniqueFd held(open(path.c_str(), O_PATH | O_CLOEXEC));
  const std::string again = "/proc/self/fd/" + std::to_string(held.get());
  struct stat64 status;
  if (stat64(again.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return UniqueFd(-1);
  return UniqueFd(static_cast<int>(TEMP_FAILURE_RETRY(open(again.c_str(), kFlags))));
}

}  // namespace

void writeStringToFile(std::string dirPath, std::string fileName, std::string content) {
  const std::string temporary = dirPath + "temp_" + fileName;
  const std::string target = dirPath + fileName;
  if (!isRealPath(temporary) || !isRealPath(target)) return;

  FreeTemporaryName(temporary);
  FILE* file = std::fopen(temporary.c_str(), "w+e");
  if (file == nullptr) {
    LOG_ERROR_AT(kOpenErrorLine, LOG_TEXT_NOT_WRITTEN "%s)", std::strerror(errno));
    return;
  }
  std::fputs(content.c_str(), file);
  std::fflush(file);
  fsync(fileno(file));
  std::fclose(file);

  LOG_DEBUG_AT(kSaveFileLine, LOG_TEXT_SAVE_FILE "%s", target.c_str());
  if (std::rename(temporary.c_str(), target.c_str()) == 0) LOG_DEBUG_AT(kSavedLine, LOG_TEXT_SAVED);
  sync();
}

std::string readFileToString(std::string path) {
  const UniqueFd file = OpenForReading(path);
  std::string content;
  struct stat64 status;
  if (file.get() < 0 || fstat64(file.get(), &status) != 0) return content;
  if (!S_ISREG(status.st_mode) || status.st_size > kMostBytesRead) return content;
  content.reserve(static_cast<std::size_t>(status.st_size));
  std::array<char, 65536> buffer;
  ssize_t count = 0;
  while ((count = TEMP_FAILURE_RETRY(read(file.get(), buffer.data(), buffer.size()))) > 0) {
    content.append(buffer.data(), static_cast<std::size_t>(count));
  }
  // A part taken for the whole would be written back as the whole.
  if (count < 0) content.clear();
  return content;
}
