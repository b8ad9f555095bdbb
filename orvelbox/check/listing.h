// What a package or a platform holds, known by a listing of it: directories, DLLs and what is named like one. Walked by
// the plug-in's own walk, under the root that the tree has on the device. Contents are package_files' matter.
#ifndef ORVEL_ORVELBOX_CHECK_LISTING_H_
#define ORVEL_ORVELBOX_CHECK_LISTING_H_

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "util/platform_utils/directory_walk.h"

namespace orvelbox {

// Is this named like a DLL, in capitals or not?
bool LooksLikeDll(std::string_view path);

class Listing {
 public:
  // `path`: below the root, its names separated by single "/". `type`: as in dirent; a link is one that leads to a file
  // or a directory. A directory may be told more than once, or not at all. Files that are not named like DLLs are left
  // out.
  void Add(std::string_view path, unsigned char type);
  // The link `path` leads to a directory that holds `there`. No walk enters it, but it can be asked for by its path.
  void AddLinked(const std::string& path, Listing there);

  // How much there is that is named like a DLL and is no directory.
  std::size_t dlls() const { return dlls_; }
  // Calls `visit` with the path and the type of each of them, seen by the walk or not.
  void ForEachDll(const std::function<void(const std::string& path, unsigned char type)>& visit) const;

 private:
  friend class PlacedListing;
  struct Entry {
    std::string name;
    unsigned char type;
  };
  std::vector<Entry>& In(std::string_view directory);
  const std::vector<Entry>* Find(std::string_view directory) const;
  void Put(std::string_view path, unsigned char type);

  std::unordered_map<std::string, std::vector<Entry>> directories_;  // by their paths below the root, which is ""
  std::map<std::string, Listing, std::greater<>> linked_;            // the longest path first
  std::size_t dlls_ = 0;
};

// A listing as the walk sees it once the tree has its place at `root` on the device.
class PlacedListing {
 public:
  class Directory {
   public:
    explicit Directory(const std::vector<Listing::Entry>* entries) : entries_(entries) {}
    bool Next(ListedEntry& entry);

   private:
    const std::vector<Listing::Entry>* entries_;  // null when there is no such directory
    std::size_t next_ = 0;
  };

  // Borrows the listing. Only the root and paths below it can be opened.
  PlacedListing(const Listing& listing, std::string root) : listing_(listing), root_(std::move(root)) {}

  Directory Open(const std::string& path) const { return Directory(Find(path)); }
  static bool LeadsToFileOrDirectory(const std::string& /*path*/) { return true; }

 private:
  const std::vector<Listing::Entry>* Find(std::string_view path) const;

  const Listing& listing_;
  std::string root_;  // without a "/" at its end
};

// The plug-in's walk over it. Borrows the listing.
Walk WalkOver(const Listing& listing, const std::string& root);

}  // namespace orvelbox

#endif
