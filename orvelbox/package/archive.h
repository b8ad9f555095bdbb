// Reads package archives (.opk, which are zip files), trusting nothing in them: what an archive may hold, and how much,
// is decided here. Where its files go is up to the caller.
//
// An archive is refused when it is no zip file, cut off or damaged, and when one of its entries
// - has an absolute path, a "..", a backslash, a NUL or an empty or overlong name in its path, or lies too deep,
// - is a link or a special file, is encrypted, or has the path of another entry that is no directory,
// - is told differently by the archive's directory and by its own header, or its content shares bytes with another
// one's,
// - goes beyond one of the limits (archive_limits.h).
#ifndef ORVEL_ORVELBOX_PACKAGE_ARCHIVE_H_
#define ORVEL_ORVELBOX_PACKAGE_ARCHIVE_H_

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "base/unique_fd.h"
#include "orvelbox/package/archive_limits.h"

namespace orvelbox {

struct ZipEntry;

struct ArchiveEntry {
  std::string path;  // relative, its names separated by single "/"
  bool directory = false;
  std::filesystem::perms permissions{};  // of owner, group and others, as the archive says
  std::uint64_t size = 0;                // unpacked
  // Where its content stands in the archive, and how.
  std::uint64_t content = 0;
  std::uint64_t packed_size = 0;
  std::uint32_t checksum = 0;
  bool deflated = false;
};

class Archive {
 public:
  // Reads what the archive holds; contents are left alone. Throws host::DeviceError, naming the archive and the entry,
  // when it is refused.
  explicit Archive(const std::filesystem::path& file, const ArchiveLimits& limits = {});

  // In the order of the archive's directory. Directories that only the paths of others imply are not among them.
  const std::deque<ArchiveEntry>& entries() const { return entries_; }
  const std::string& name() const { return name_; }
  int file() const { return file_.get(); }

  // Throws host::DeviceError about a damaged entry, or about the whole archive.
  [[noreturn]] void RefuseDamaged(const std::string& entry, const std::string& why) const;

 private:
  void ReadEntries(const ArchiveLimits& limits);
  [[noreturn]] void Refuse(const std::string& entry, const std::string& why) const;
  void RequirePlain(const ZipEntry& entry) const;
  void RequireRoom(const ZipEntry& entry, std::uint64_t before, std::uint64_t own_size,
                   const ArchiveLimits& limits) const;
  void RequireApart(std::uint64_t size) const;

  std::string name_;
  UniqueFd file_;
  std::deque<ArchiveEntry> entries_;  // grows without being copied
};

// The content of one entry, unpacked piece by piece.
class ArchiveContent {
 public:
  // Borrows both.
  ArchiveContent(const Archive& archive, const ArchiveEntry& entry);
  ArchiveContent(const ArchiveContent&) = delete;
  ArchiveContent& operator=(const ArchiveContent&) = delete;
  ~ArchiveContent();

  // The next piece, of at most `most` bytes (not 0), good until the next call; empty at the end. Throws
  // host::DeviceError when the content is damaged, or not as long as the archive says; its checksum is not looked at.
  std::string_view Next(std::size_t most);

 private:
  std::string_view ReadPacked(std::size_t most);
  std::string_view Unpack(std::size_t most);

  const Archive& archive_;
  const ArchiveEntry& entry_;
  std::uint64_t read_ = 0;      // packed bytes
  std::uint64_t unpacked_ = 0;  // bytes that were handed on
  z_stream stream_{};
  std::string packed_;
  std::string piece_;
};

// Hands the whole content of an entry to `take`, piece by piece. Throws what ArchiveContent::Next() and `take` throw,
// and host::DeviceError at the end when the checksum is wrong.
void ReadContent(const Archive& archive, const ArchiveEntry& entry, const std::function<void(std::string_view)>& take);

}  // namespace orvelbox

#endif
