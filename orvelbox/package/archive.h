// Reads package archives (.opk, which are zip files), trusting nothing in them: what an archive may hold, and how much,
// is decided here. Where its files go is up to the receiver.
//
// An archive is refused when it is no zip file, cut off or damaged, and when one of its entries
// - has an absolute path, a "..", a backslash or an empty or overlong name in its path, or lies too deep,
// - is a link or a special file, is encrypted, or has the path of another entry that is no directory,
// - goes beyond one of the limits.
#ifndef ORVEL_ORVELBOX_PACKAGE_ARCHIVE_H_
#define ORVEL_ORVELBOX_PACKAGE_ARCHIVE_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace orvelbox {

// What an archive may hold at most.
struct ArchiveLimits {
  std::uint64_t entries = 50'000;                // files and directories, those that a path implies included
  std::uint64_t bytes = std::uint64_t{2} << 30;  // of all files, unpacked
  // Unpacked, all files are at most this many times the archive's own size; up to `unsuspicious_bytes` it is not asked.
  std::uint64_t ratio = 200;
  std::uint64_t unsuspicious_bytes = std::uint64_t{16} << 20;
  std::size_t path_bytes = 1024;
  std::size_t depth = 64;  // names in one path
};

struct ArchiveEntry {
  std::string path;  // relative, its names separated by single "/"
  bool directory = false;
  std::filesystem::perms permissions{};  // of owner, group and others, as the archive says
};

// Takes what an archive holds, in the archive's order: each entry with Begin, then the content of a file in pieces.
// Directories that only the paths of others imply are not reported. What a function throws ends the reading.
class ArchiveReceiver {
 public:
  virtual ~ArchiveReceiver() = default;
  virtual void Begin(const ArchiveEntry& entry) = 0;
  virtual void Content(std::string_view piece) = 0;
};

// Hands the archive to `receiver`. Throws host::DeviceError, naming the archive and the entry, when it is refused; what
// the receiver got until then is up to the receiver. Keeps no state between calls; calls in several threads are
// independent of each other.
void ReadArchive(const std::filesystem::path& file, const ArchiveLimits& limits, ArchiveReceiver& receiver);

// The same for an archive in memory, called `name` in errors.
void ReadArchive(std::string_view bytes, const std::string& name, const ArchiveLimits& limits,
                 ArchiveReceiver& receiver);

}  // namespace orvelbox

#endif
