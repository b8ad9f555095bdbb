// The directory walk behind scanFilesInDirExcludeSymlink, for callers that use more of the listing than names.
#ifndef UTIL_PLATFORM_UTILS_DIRECTORY_WALK_H_
#define UTIL_PLATFORM_UTILS_DIRECTORY_WALK_H_

#include <dirent.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/affix.h"
#include "quarnel_util/quarnel_util.h"

// A file that the walk found; valid until the visitor returns.
struct ListedFile {
  const std::string& directory;
  std::string_view name;
  // The listing says that the file is a regular one, and lstat of its path cannot fail for length or permission.
  bool regular;

  // The full path, built anew by each call.
  std::string Path() const;
};

using FileVisitor = std::function<void(const ListedFile&)>;

// An entry of a directory; valid until the next one is read.
struct ListedEntry {
  std::string_view name;
  unsigned char type;  // as in dirent
  bool reachable;      // lstat of its path cannot fail for length or permission
};

// Directories of links into the shared assembly cache. The targets are not the package's own files.
inline constexpr const char* kAssemblyCacheLinks = ".sac_symlink";

// The walk over the entries that `lister` returns: those of the file system, or of a plain list of files.
//   lister.Open(path)                    the open directory; it stays open during the walk of its subdirectories
//   directory.Next(ListedEntry&)         the next entry; false after the last one, or when it could not be opened
//   lister.LeadsToFileOrDirectory(path)  asked about links and entries of unknown type
// Each directory uses its own copy of `visit`, copied from that of its parent directory.
template <class Lister>
void WalkListed(const Lister& lister, const std::string& path, FileVisitor visit, unsigned int depth) {
  if (Contains(path, kAssemblyCacheLinks)) return;
  std::vector<std::string> subdirectories;
  auto directory = lister.Open(path);
  for (ListedEntry entry{}; directory.Next(entry);) {
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
        if (depth >= 2 && entry.name != "." && entry.name != "..") subdirectories.emplace_back(entry.name);
        break;
      default:
        break;
    }
  }
  for (const std::string& subdirectory : subdirectories) {
    WalkListed(lister, concatPath(path, subdirectory), visit, depth - 1);
  }
}

// Calls `visit` for the same files, in the same order, as scanFilesInDirExcludeSymlink calls its reader.
void WalkFiles(const std::string& path, FileVisitor visit, unsigned int depth);

// WalkFiles, or a replacement for it.
using Walk = std::function<void(const std::string& path, FileVisitor visit, unsigned int depth)>;

#endif
