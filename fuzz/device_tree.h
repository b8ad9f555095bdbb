// The files in a fixed set of directories, known with few system calls: the kernel tells in which directories something
// happened, and only those are read again.
#ifndef FUZZ_DEVICE_TREE_H_
#define FUZZ_DEVICE_TREE_H_

#include <dirent.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/unique_fd.h"
#include "fuzz/event_model.h"

namespace fuzz {

class DeviceTree {
 public:
  // Makes `directories` below the existing `areas`. From then on no directory may come or go.
  DeviceTree(const std::vector<std::string>& areas, const std::vector<std::string>& directories);

  // Replaces what has the name.
  void Put(const std::string& path, const ModelFile& file) const;
  void Remove(const std::string& path) const;
  // Removes all files and links.
  void Clear();

  // All existing files and links.
  const std::map<std::string, ModelFile>& Files();

 private:
  struct Close {
    void operator()(DIR* listing) const { closedir(listing); }
  };
  struct Directory {
    std::string path;  // ends in "/"
    std::unique_ptr<DIR, Close> listing;
    int inside;  // how many directories are in it
    bool changed;
  };

  void Open(const std::string& path);
  void NoteChanges();
  void Forget(const Directory& directory);
  int Read(const Directory& directory);

  UniqueFd changes_;
  std::map<int, Directory> directories_;  // by the number of the watch on it
  std::map<std::string, ModelFile> files_;
};

}  // namespace fuzz

#endif
