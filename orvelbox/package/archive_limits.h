// What an archive may hold at most.
#ifndef ORVEL_ORVELBOX_PACKAGE_ARCHIVE_LIMITS_H_
#define ORVEL_ORVELBOX_PACKAGE_ARCHIVE_LIMITS_H_

#include <cstddef>
#include <cstdint>

namespace orvelbox {

struct ArchiveLimits {
  std::uint64_t entries = 50'000;                // files and directories, those that a path implies included
  std::uint64_t bytes = std::uint64_t{2} << 30;  // of all files, unpacked
  // Unpacked, all files are at most this many times the archive's own size; up to `unsuspicious_bytes` it is not asked.
  std::uint64_t ratio = 200;
  std::uint64_t unsuspicious_bytes = std::uint64_t{16} << 20;
  std::size_t path_bytes = 1024;
  std::size_t all_path_bytes = std::size_t{8} << 20;
  std::size_t depth = 64;  // names in one path
};

}  // namespace orvelbox

#endif
