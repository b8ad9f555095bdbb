// Reading an archive with libarchive, entry by entry, each judged before anything of it is handed on.
#include "orvelbox/package/archive.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <memory>
#include <new>

#include "base/unique_fd.h"
#include "orvelbox/package/archive_paths.h"
#include "platform/host/device.h"
#include "platform/host/files.h"

namespace orvelbox {
namespace {

struct FreeArchive {
  void operator()(archive* reader) const { archive_read_free(reader); }
};
using Reader = std::unique_ptr<archive, FreeArchive>;

// libarchive converts names to the characters of the thread's locale: while this lives, they stay UTF-8.
class Utf8Names {
 public:
  Utf8Names() : utf8_(newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{})) {
    if (utf8_ != locale_t{}) before_ = uselocale(utf8_);
  }
  Utf8Names(const Utf8Names&) = delete;
  Utf8Names& operator=(const Utf8Names&) = delete;
  ~Utf8Names() {
    if (utf8_ == locale_t{}) return;
    uselocale(before_);
    freelocale(utf8_);
  }

 private:
  locale_t utf8_;
  locale_t before_{};
};

// Only through its directory of entries is a zip file read: a cut-off one has none.
Reader MakeReader() {
  Reader reader(archive_read_new());
  if (!reader) throw std::bad_alloc();
  if (archive_read_support_format_zip_seekable(reader.get()) != ARCHIVE_OK) throw std::bad_alloc();
  return reader;
}

// Reads one opened archive.
class Reading {
 public:
  Reading(archive* reader, std::string name, std::uint64_t own_size, const ArchiveLimits& limits,
          ArchiveReceiver& receiver)
      : reader_(reader),
        name_(std::move(name)),
        own_size_(own_size),
        limits_(limits),
        paths_(limits),
        receiver_(receiver) {}

  void Run() {
    archive_entry* entry = nullptr;
    for (;;) {
      const int status = archive_read_next_header(reader_, &entry);
      if (status == ARCHIVE_EOF) return;
      if (status != ARCHIVE_OK) RefuseDamaged();
      Take(entry);
    }
  }

 private:
  [[noreturn]] void RefuseDamaged() const {
    const char* text = archive_error_string(reader_);
    throw host::DeviceError((current_.empty() ? name_ : name_ + ": entry \"" + current_ + "\"") +
                            ": no zip archive, cut off or damaged (" + (text == nullptr ? "unreadable" : text) +
                            "); make it anew, or fetch it again");
  }

  [[noreturn]] void Refuse(const std::string& why) const {
    throw host::DeviceError(name_ + ": entry \"" + current_ + "\" " + why);
  }

  void Take(archive_entry* entry) {
    const char* path = archive_entry_pathname(entry);
    if (path == nullptr) RefuseDamaged();
    current_ = path;
    RequirePlain(entry);
    ArchiveEntry told;
    told.directory = archive_entry_filetype(entry) == AE_IFDIR;
    told.permissions = static_cast<std::filesystem::perms>(archive_entry_perm(entry) & 0777U);
    if (const std::string problem = paths_.Add(current_, told.directory, told.path); !problem.empty()) Refuse(problem);
    if (told.path.empty()) return;  // the package's own directory
    if (!told.directory) RequireRoom(entry);
    receiver_.Begin(told);
    if (!told.directory) TakeContent();
  }

  void RequirePlain(archive_entry* entry) const {
    if (archive_entry_is_encrypted(entry) != 0) Refuse("is encrypted; pack it without a password");
    const auto type = archive_entry_filetype(entry);
    if (type == AE_IFLNK || archive_entry_hardlink(entry) != nullptr) {
      Refuse("is a link; pack the file itself in its place");
    }
    if (type != AE_IFREG && type != AE_IFDIR) Refuse("is no file and no directory; take it out of the archive");
  }

  // By what the entry says of itself; what it really holds is counted as well.
  void RequireRoom(archive_entry* entry) const {
    const std::int64_t size = archive_entry_size_is_set(entry) != 0 ? archive_entry_size(entry) : 0;
    if (size < 0) RefuseDamaged();
    RequireWithin(static_cast<std::uint64_t>(size));
  }

  // `more` bytes beside those that were unpacked already.
  void RequireWithin(std::uint64_t more) const {
    if (more > limits_.bytes - bytes_) {
      Refuse("makes the package larger than " + std::to_string(limits_.bytes) + " bytes; make it smaller");
    }
    const std::uint64_t total = bytes_ + more;
    if (total > limits_.unsuspicious_bytes && total / limits_.ratio > own_size_) {
      Refuse("unpacks to more than " + std::to_string(limits_.ratio) +
             " times the archive's size, which no package does; install it from a directory if it is to be trusted");
    }
  }

  void TakeContent() {
    std::array<char, 65536> block;
    for (;;) {
      const la_ssize_t length = archive_read_data(reader_, block.data(), block.size());
      if (length < 0) RefuseDamaged();
      if (length == 0) return;
      RequireWithin(static_cast<std::uint64_t>(length));
      bytes_ += static_cast<std::uint64_t>(length);
      receiver_.Content({block.data(), static_cast<std::size_t>(length)});
    }
  }

  archive* reader_;
  std::string name_;
  std::uint64_t own_size_;
  ArchiveLimits limits_;
  ArchivePaths paths_;
  ArchiveReceiver& receiver_;
  std::string current_;  // the entry at hand, as the archive names it
  std::uint64_t bytes_ = 0;
};

}  // namespace

void ReadArchive(const std::filesystem::path& file, const ArchiveLimits& limits, ArchiveReceiver& receiver) {
  const UniqueFd descriptor(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!descriptor) host::ThrowFileError(file, "read", errno);
  struct stat status {};
  if (fstat(descriptor.get(), &status) != 0) host::ThrowFileError(file, "read", errno);
  if (!S_ISREG(status.st_mode)) {
    throw host::DeviceError(file.string() + ": no regular file; name the directory or the archive of a package");
  }
  const Utf8Names utf8;
  const Reader reader = MakeReader();
  Reading reading(reader.get(), file.string(), static_cast<std::uint64_t>(status.st_size), limits, receiver);
  archive_read_open_fd(reader.get(), descriptor.get(), 65536);  // its failure shows with the first entry
  reading.Run();
}

void ReadArchive(std::string_view bytes, const std::string& name, const ArchiveLimits& limits,
                 ArchiveReceiver& receiver) {
  const Utf8Names utf8;
  const Reader reader = MakeReader();
  Reading reading(reader.get(), name, bytes.size(), limits, receiver);
  archive_read_open_memory(reader.get(), bytes.data(), bytes.size());
  reading.Run();
}

}  // namespace orvelbox
