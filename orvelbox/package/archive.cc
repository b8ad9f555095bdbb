// Reading an archive with libarchive, entry by entry, each judged before anything of it is handed on.
#include "orvelbox/package/archive.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <memory>
#include <new>
#include <unordered_map>

#include "base/unique_fd.h"
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

constexpr std::size_t kLongestName = 255;

std::string ProblemOfName(std::string_view name) {
  if (name == "..") return "leads out of the package (\"..\"); pack it with plain paths";
  if (name.size() > kLongestName) return "holds a name of more than 255 bytes; choose a shorter one";
  return "";
}

// The paths inside one archive: which are allowed, and that no two entries share one.
class ArchivePaths {
 public:
  explicit ArchivePaths(const ArchiveLimits& limits) : limits_(limits) {}

  // Takes an entry's path as the archive writes it. Returns what is wrong with it, in words that follow the entry's
  // name, or nothing; then `path` is the plain form, empty for the archive's own root.
  std::string Add(std::string_view written, bool directory, std::string& path);

 private:
  std::string AddPlain(const std::string& path, bool directory);

  ArchiveLimits limits_;
  std::unordered_map<std::string, bool> directories_;  // of every path there is: is it a directory?
};

std::string ArchivePaths::Add(std::string_view written, bool directory, std::string& path) {
  path.clear();
  if (written.empty()) return "has no name; pack the archive anew";
  if (written.front() == '/') return "has an absolute path; pack it with paths relative to the package";
  if (written.find('\\') != std::string_view::npos) return "holds \"\\\"; pack it with \"/\" between the names";
  if (written.size() > limits_.path_bytes) {
    return "has a path of more than " + std::to_string(limits_.path_bytes) + " bytes; choose shorter names";
  }
  std::size_t depth = 0;
  while (!written.empty()) {
    const std::size_t end = std::min(written.find('/'), written.size());
    const std::string_view name = written.substr(0, end);
    written.remove_prefix(std::min(end + 1, written.size()));
    if (name.empty() || name == ".") continue;
    if (std::string problem = ProblemOfName(name); !problem.empty()) return problem;
    if (++depth > limits_.depth) {
      return "lies more than " + std::to_string(limits_.depth) + " directories deep; make the package flatter";
    }
    path.append(path.empty() ? "" : "/").append(name);
  }
  if (path.empty()) return directory ? "" : "has no name; pack the archive anew";
  return AddPlain(path, directory);
}

std::string ArchivePaths::AddPlain(const std::string& path, bool directory) {
  for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
    const auto parent = directories_.emplace(path.substr(0, slash), true).first;
    if (!parent->second) return "lies in \"" + parent->first + "\", which is a file; pack the archive anew";
  }
  const auto [known, added] = directories_.emplace(path, directory);
  if (!added && !(directory && known->second)) return "is there twice; pack the archive anew";
  if (directories_.size() > limits_.entries) {
    return "is one too many: the archive holds more than " + std::to_string(limits_.entries) +
           " files and directories; make the package smaller";
  }
  return "";
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
