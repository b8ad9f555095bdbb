// The walk over files and the two directory walkers.
#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/affix.h"
#include "morvath/platform_utils.h"
#include "quarnel_util/quarnel_util.h"
#include "util/platform_utils/directory_walk.h"
#include "util/platform_utils/log_source.h"

namespace {

// Directories of links into the shared assembly cache: what they lead to is not the package's own.
constexpr const char* kAssemblyCacheLinks = ".sac_symlink";

struct CloseDirectory {
  void operator()(DIR* listing) const { closedir(listing); }
};
using Listing = std::unique_ptr<DIR, CloseDirectory>;

Listing OpenListing(const std::string& path) { return Listing(opendir(path.c_str())); }

struct Directory {
  Listing listing;
  std::size_t reachable;  // how long names are at most that can be reached by their paths
};

// A directory that may be listed need not let anybody reach its entries. Going through "." asks for that as well, in
// the one call that opens it.
Directory OpenDirectory(const std::string& path) {
  if (path.empty()) return {nullptr, 0};
  Listing listing = OpenListing(concatPath(path, "."));
  if (listing != nullptr || (errno != EACCES && errno != ENAMETOOLONG)) {
    return {std::move(listing), PATH_MAX - path.size() - sizeof "/"};
  }
  return {OpenListing(path), 0};
}

bool IsDotOrDotDot(std::string_view name) { return name == "." || name == ".."; }

class FileSystem : public DirectoryLister {
 public:
  void List(const std::string& path, const std::function<void(const Entry&)>& visit) const override {
    const Directory directory = OpenDirectory(path);
    if (directory.listing == nullptr) return;
    while (const dirent64* entry = readdir64(directory.listing.get())) {
      const std::string_view name = entry->d_name;
      visit({name, entry->d_type, name.size() <= directory.reachable});
    }
  }

  bool LeadsToFileOrDirectory(const std::string& path) const override {
    struct stat64 status;
    return stat64(path.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
  }
};

}  // namespace

const DirectoryLister& FileSystemLister() {
  static const FileSystem file_system;
  return file_system;
}

std::string ListedFile::Path() const { return concatPath(directory, std::string(name)); }

void WalkFiles(const std::string& path, FileVisitor visit, unsigned int depth, const DirectoryLister& lister) {
  if (Contains(path, kAssemblyCacheLinks)) return;
  std::vector<std::string> subdirectories;
  lister.List(path, [&](const DirectoryLister::Entry& entry) {
    const ListedFile file{path, entry.name, entry.type == DT_REG && entry.reachable};
    switch (entry.type) {
      case DT_REG:
        visit(file);
        break;
      case DT_LNK:
      case DT_UNKNOWN:
        if (lister.LeadsToFileOrDirectory(file.Path())) visit(file);
        break;
      case DT_DIR:
        if (depth >= 2 && !IsDotOrDotDot(entry.name)) subdirectories.emplace_back(entry.name);
        break;
      default:
        break;
    }
  });
  for (const std::string& subdirectory : subdirectories) {
    WalkFiles(concatPath(path, subdirectory), visit, depth - 1, lister);
  }
}

void scanFilesInDirExcludeSymlink(const std::string& path, FileReader reader, unsigned int depth) {
  auto read = [reader = std::move(reader)](const ListedFile& file) { reader(file.Path(), std::string(file.name)); };
  WalkFiles(path, std::move(read), depth);
}

void scanDirsInDirectory(const std::string& path, FileReader reader) {
  FunctionEntryExitTracker tracker("void scanDirsInDirectory(const std::string&, FileReader)", kLogSource.unit,
                                   __LINE__);
  const Listing listing = OpenListing(path);
  if (listing == nullptr) return;
  while (const dirent64* entry = readdir64(listing.get())) {
    if (entry->d_type != DT_DIR || IsDotOrDotDot(entry->d_name)) continue;
    reader(concatPath(path, entry->d_name), entry->d_name);
  }
}
