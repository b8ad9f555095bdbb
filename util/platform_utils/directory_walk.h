// The walk over a package or a directory of assemblies that lies behind scanFilesInDirExcludeSymlink, for callers that
// can use what the listing tells of a file beside its name. What the files mean is the callers' business.
#ifndef UTIL_PLATFORM_UTILS_DIRECTORY_WALK_H_
#define UTIL_PLATFORM_UTILS_DIRECTORY_WALK_H_

#include <functional>
#include <string>
#include <string_view>

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

// Where a walk learns what directories hold: the file system, or a listing of files that are not there themselves.
class DirectoryLister {
 public:
  // Good until the visitor returns.
  struct Entry {
    std::string_view name;
    unsigned char type;  // as in dirent
    bool reachable;      // nothing about its path speaks against lstat finding it
  };

  virtual ~DirectoryLister() = default;
  // Calls `visit` for each entry, in the directory's order; for none when the directory cannot be listed.
  virtual void List(const std::string& path, const std::function<void(const Entry&)>& visit) const = 0;
  // Asked about links and entries of unknown type.
  virtual bool LeadsToFileOrDirectory(const std::string& path) const = 0;
};

const DirectoryLister& FileSystemLister();

// Calls `visit` for the files that scanFilesInDirExcludeSymlink hands to its reader, in the same order; every directory
// gets a copy of its own of `visit`, made from that of the directory above.
void WalkFiles(const std::string& path, FileVisitor visit, unsigned int depth,
               const DirectoryLister& lister = FileSystemLister());

#endif
