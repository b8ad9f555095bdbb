// Reading whole files, and replacing them durably.
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

// Line fields of writeStringToFile's messages. Log readers search for them, so they do not follow the code.
constexpr int kOpenErrorLine = 163;
constexpr int kSaveFileLine = 173;
constexpr int kSavedLine = 177;

// More than any text written here. The size of a sparse file may exceed the memory.
constexpr off_t kMostBytesRead = off_t{128} << 20;

// Removes what has the temporary file's name and would redirect the text: a hard link, a pipe or a device. A directory
// stays, and opening it fails. The rest of an earlier write stays and is overwritten.
void FreeTemporaryName(const std::string& path) {
  struct stat status;
  if (lstat(path.c_str(), &status) == 0 && (!S_ISREG(status.st_mode) || status.st_nlink > 1)) unlink(path.c_str());
}

UniqueFd OpenForReading(const std::string& path) {
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOCTTY;
  // Not blocking, so that opening a pipe does not wait for its other end.
  const int file = open(path.c_str(), kFlags | O_NONBLOCK);
  if (file >= 0 || errno != EWOULDBLOCK) return UniqueFd(file);
  // Waits for the holder of a lease on the file, but not for a pipe that takes the file's name meanwhile.
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
  // A partial text would be written back as the whole file.
  if (count < 0) content.clear();
  return content;
}
