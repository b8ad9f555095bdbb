// Path checks and affix predicates.
#include "morvath/platform_utils.h"

#include <sys/stat.h>

#include <cerrno>

#include "base/affix.h"
#include "base/log_texts.h"
#include "util/platform_utils/log_source.h"

bool isRealPath(const std::string& path) {
  if (path.empty()) {
    LOG_ERROR("Path is empty");
    return false;
  }
  struct stat status;
  if (lstat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) {
      LOG_DEBUG("File does not exist. No need to check symbolic links. ###");
      return true;
    }
    LOG_ERROR("lstat error.");
    return false;
  }
  if (S_ISLNK(status.st_mode)) {
    LOG_ERROR(LOG_TEXT_LINK "%s", path.c_str());
    return false;
  }
  return true;
}

bool startWith(const std::string& str, const std::string& prefix) { return HasPrefix(str, prefix); }

bool endWith(const std::string& str, const std::string& suffix) { return HasSuffix(str, suffix); }
