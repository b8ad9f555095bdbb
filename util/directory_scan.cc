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

// Is what was opened the directory that stands at `path` itself, and not one that a link put there meanwhile leads to?
bool StandsAt(const std::string& path, DIR* directory) {
  struct stat64 opened;
  struct stat64 standing;
  return fstat64(dirfd(directory), &opened) == 0 && lstat64(path.c_str(), &standing) == 0 &&
         opened.st_dev == standing.st_dev && opened.st_ino == standing.st_ino;
}

bool LeadsToFileOrDirectory(const std::string& path) {
  struct stat64 status;
  return stat64(path.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

void ScanSubdirectory(const std::string& path, const FileReader& reader, unsigned int depth);

void ScanOpened(const Directory& directory, const std::string& path, const FileReader& reader, unsigned int depth) {
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
  for (const std::string& subdirectory : subdirectories) ScanSubdirectory(subdirectory, reader, depth - 1);
}

bool IsAmongCacheLinks(const std::string& path) { return path.find(kAssemblyCacheLinks) != std::string::npos; }

// Between the listing and now a stranger may have put a link in the directory's place.
void ScanSubdirectory(const std::string& path, const FileReader& reader, unsigned int depth) {
  if (IsAmongCacheLinks(path)) return;
  const Directory directory(opendir(path.c_str()));
  if (directory != nullptr && StandsAt(path, directory.get())) ScanOpened(directory, path, reader, depth);
}

}  // namespace

void scanFilesInDirExcludeSymlink(const std::string& path, FileReader reader, unsigned int depth) {
  if (IsAmongCacheLinks(path)) return;
  const Directory directory(opendir(path.c_str()));
  if (directory != nullptr) ScanOpened(directory, path, reader, depth);
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
