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

struct CloseDirectory {
  void operator()(DIR* listing) const { closedir(listing); }
};
using Listing = std::unique_ptr<DIR, CloseDirectory>;

Listing OpenListing(const std::string& path) { return Listing(opendir(path.c_str())); }

class Directory {
 public:
  Directory(Listing listing, std::size_t reachable) : listing_(std::move(listing)), reachable_(reachable) {}

  bool Next(ListedEntry& entry) const {
    const dirent64* const next = listing_ == nullptr ? nullptr : readdir64(listing_.get());
    if (next == nullptr) return false;
    entry.name = next->d_name;
    entry.type = next->d_type;
    entry.reachable = entry.name.size() <= reachable_;
    return true;
  }

 private:
  Listing listing_;
  std::size_t reachable_;  // the greatest length of a name that lstat accepts after the path
};

struct FileSystem {
  // A directory that can be listed may still deny access to its entries. Opening it through "." checks that as well, in
  // the same system call.
  static Directory Open(const std::string& path) {
    if (path.empty()) return {nullptr, 0};
    Listing listing = OpenListing(concatPath(path, "."));
    if (listing != nullptr || (errno != EACCES && errno != ENAMETOOLONG)) {
      return {std::move(listing), PATH_MAX - path.size() - sizeof "/"};
    }
    return {OpenListing(path), 0};
  }

  static bool LeadsToFileOrDirectory(const std::string& path) {
    struct stat64 status;
    return stat64(path.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
  }
};

bool IsDotOrDotDot(std::string_view name) { return name == "." || name == ".."; }

}  // namespace

std::string ListedFile::Path() const { return concatPath(directory, std::string(name)); }

void WalkFiles(const std::string& path, FileVisitor visit, unsigned int depth) {
  WalkListed(FileSystem(), path, std::move(visit), depth);
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
