// The two directory walkers.
#include <dirent.h>
#include <sys/stat.h>

#include <memory>
#include <string_view>
#include <vector>

#include "morvath/platform_utils.h"
#include "quarnel_util/quarnel_util.h"
#include "util/log.h"

namespace {

constexpr LogSource kLogSource{kUtilityTag, "platform_utils"};
// Directories of links into the shared assembly cache: what they lead to is not the package's own.
constexpr const char* kAssemblyCacheLinks = ".sac_symlink";

struct CloseDirectory {
  void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

bool IsDotOrDotDot(std::string_view name) { return name == "." || name == ".."; }

bool LeadsToFileOrDirectory(const std::string& path) {
  struct stat64 status;
  return stat64(path.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

}  // namespace

void scanFilesInDirExcludeSymlink(const std::string& path, FileReader reader, unsigned int depth) {
  if (path.find(kAssemblyCacheLinks) != std::string::npos) return;
  const Directory directory(opendir(path.c_str()));
  if (directory == nullptr) return;

  std::vector<std::string> subdirectories;
  while (const dirent64* entry = readdir64(directory.get())) {
    const std::string name = entry->d_name;
    const std::string fullPath = concatPath(path, name);
    switch (entry->d_type) {
      case DT_REG:
        reader(fullPath, name);
        break;
      case DT_LNK:
      case DT_UNKNOWN:
        if (LeadsToFileOrDirectory(fullPath)) reader(fullPath, name);
        break;
      case DT_DIR:
        if (depth >= 2 && !IsDotOrDotDot(name)) subdirectories.push_back(fullPath);
        break;
      default:
        break;
    }
  }
  for (const std::string& subdirectory : subdirectories) {
    scanFilesInDirExcludeSymlink(subdirectory, reader, depth - 1);
  }
}

void scanDirsInDirectory(const std::string& path, FileReader reader) {
  FunctionEntryExitTracker tracker("void scanDirsInDirectory(const std::string&, FileReader)", kLogSource.unit,
                                   __LINE__);
  const Directory directory(opendir(path.c_str()));
  if (directory == nullptr) return;
  while (const dirent64* entry = readdir64(directory.get())) {
    if (entry->d_type != DT_DIR || IsDotOrDotDot(entry->d_name)) continue;
    reader(concatPath(path, entry->d_name), entry->d_name);
  }
}
