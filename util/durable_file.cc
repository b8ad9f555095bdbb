// Whole files read, and replaced durably.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "morvath/platform_utils.h"
#include "util/log.h"
#include "util/unique_fd.h"

namespace {

constexpr LogSource kLogSource{kUtilityTag, "platform_utils"};

// Line fields of writeStringToFile's messages: log readers key on them, so they stay wherever the statements go.
constexpr int kOpenErrorLine = 163;
constexpr int kSaveFileLine = 173;
constexpr int kSavedLine = 177;

}  // namespace

void writeStringToFile(std::string dirPath, std::string fileName, std::string content) {
  const std::string temporary = dirPath + "temp_" + fileName;
  const std::string target = dirPath + fileName;
  if (!isRealPath(temporary) || !isRealPath(target)) return;

  FILE* file = std::fopen(temporary.c_str(), "w+e");
  if (file == nullptr) {
    LOG_ERROR_AT(kOpenErrorLine, "Fail to write string to file - open error(%s)", std::strerror(errno));
    return;
  }
  std::fputs(content.c_str(), file);
  std::fflush(file);
  fsync(fileno(file));
  std::fclose(file);

  LOG_DEBUG_AT(kSaveFileLine, "Save File : %s", target.c_str());
  if (std::rename(temporary.c_str(), target.c_str()) == 0) LOG_DEBUG_AT(kSavedLine, "Saved");
  sync();
}

std::string readFileToString(std::string path) {
  // Not blocking, so that a pipe in the file's place cannot hold up the caller.
  const UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  std::string content;
  std::array<char, 65536> buffer;
  ssize_t count = 0;
  while ((count = read(file.get(), buffer.data(), buffer.size())) > 0) {
    content.append(buffer.data(), static_cast<std::size_t>(count));
  }
  // A part taken for the whole would be written back as the whole.
  if (count < 0) content.clear();
  return content;
}
