// The paths inside one archive: which are allowed, and that no two entries share one. Pure.
#ifndef ORVEL_ORVELBOX_PACKAGE_ARCHIVE_PATHS_H_
#define ORVEL_ORVELBOX_PACKAGE_ARCHIVE_PATHS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "orvelbox/package/archive_limits.h"

namespace orvelbox {

class ArchivePaths {
 public:
  explicit ArchivePaths(const ArchiveLimits& limits) : limits_(limits) {}

  // Takes an entry's path as the archive writes it. Returns what is wrong with it, in words that follow the entry's
  // name, or nothing; then `path` is the plain form, empty for the archive's own root.
  std::string Add(std::string_view written, bool directory, std::string& path);

 private:
  std::string AddPlain(const std::string& path, bool directory);
  std::string OneTooMany() const;

  ArchiveLimits limits_;
  std::uint64_t told_ = 0;                             // entries, those with the same path among them
  std::uint64_t bytes_ = 0;                            // of their paths
  std::unordered_map<std::string, bool> directories_;  // of every path there is: is it a directory?
};

}  // namespace orvelbox

#endif
