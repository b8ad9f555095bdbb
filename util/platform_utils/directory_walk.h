// The walk over a package or a directory of assemblies that lies behind scanFilesInDirExcludeSymlink, for callers that
// can use what the listing tells of a file beside its name. What the files mean is the callers' business.
#ifndef UTIL_PLATFORM_UTILS_DIRECTORY_WALK_H_
#define UTIL_PLATFORM_UTILS_DIRECTORY_WALK_H_

#include <functional>
#include <string>
#include <string_view>

// A file that a walk has come to; good until the visitor returns.
class ListedFile {
 public:
  // `directory` is the path of the file's directory with the joint to the name behind it; it lends its room to path().
  // `regular`: the listing says that the file is a regular one, and lstat could reach it by its path.
  ListedFile(std::string& directory, std::string_view name, bool regular);
  // Gives `directory` back as it was.
  ~ListedFile();
  ListedFile(const ListedFile&) = delete;
  ListedFile& operator=(const ListedFile&) = delete;

  std::string_view name() const { return name_; }
  // True when lstat would find a regular file here. Otherwise only lstat itself can tell.
  bool regular() const { return regular_; }
  // The full path; put together when first asked for.
  const std::string& path() const;

 private:
  std::string& directory_;
  std::size_t directoryLength_;
  std::string_view name_;
  bool regular_;
};

using FileVisitor = std::function<void(const ListedFile&)>;

// Calls `visit` for the files that scanFilesInDirExcludeSymlink hands to its reader, in the same order; every directory
// gets a copy of its own of `visit`, made from that of the directory above.
void WalkFiles(const std::string& path, FileVisitor visit, unsigned int depth);

#endif
