// The walk over a package or a directory of assemblies that lies behind scanFilesInDirExcludeSymlink, for callers that
// can use what the listing tells of a file beside its name. What the files mean is the callers' business.
#ifndef UTIL_PLATFORM_UTILS_DIRECTORY_WALK_H_
#define UTIL_PLATFORM_UTILS_DIRECTORY_WALK_H_

#include <dirent.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/affix.h"
#include "quarnel_util/quarnel_util.h"

// A file that a walk has come to; good until the visitor returns.
struct ListedFile {
  const std::string& directory;
  std::string_view name;
  // The listing says that the file is a regular one, and nothing about its path speaks against lstat finding it.
  bool regular;

  // The full path, put together anew with every call.
  std::string Path() const;
};

using FileVisitor = std::function<void(const ListedFile&)>;

// An entry of a directory; good until the next one is asked for.
struct ListedEntry {
  std::string_view name;
  unsigned char type;  // as in dirent
  bool reachable;      // nothing about its path speaks against lstat finding it
};

// Directories of links into the shared assembly cache: what they lead to is not the package's own.
inline constexpr const char* kAssemblyCacheLinks = ".sac_symlink";

// The walk over whatever `lister` lists: the file system, or files that are known by a listing only.
//   lister.Open(path)                    the open directory, which stays so while its subdirectories are walked
//   directory.Next(ListedEntry&)         its next entry; false after the last one, or when it could not be opened
//   lister.LeadsToFileOrDirectory(path)  asked about links and entries of unknown type
// Every directory gets a copy of its own of `visit`, made from that of the directory above.
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

// Calls `visit` for the files that scanFilesInDirExcludeSymlink hands to its reader, in the same order.
void WalkFiles(const std::string& path, FileVisitor visit, unsigned int depth);

// WalkFiles, or what takes its place.
using Walk = std::function<void(const std::string& path, FileVisitor visit, unsigned int depth)>;

#endif
