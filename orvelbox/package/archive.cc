// Judging an archive's entries, and unpacking their contents with zlib.
#include "orvelbox/package/archive.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>

#include "orvelbox/desk/bytes.h"
#include "orvelbox/package/archive_paths.h"
#include "orvelbox/package/zip_directory.h"
#include "platform/host/device_error.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// The directory is read in large pieces, the header before each content by itself.
constexpr std::size_t kDirectoryWindow = 65536;
constexpr std::size_t kHeaderWindow = 256;
// Contents are read and unpacked in pieces of these sizes.
constexpr std::size_t kPackedPiece = 4096;
constexpr std::size_t kPiece = 65536;

UniqueFd OpenArchive(const fs::path& file) {
  UniqueFd descriptor(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!descriptor || fstat(descriptor.get(), &status) != 0) host::ThrowFileError(file, "read", errno);
  if (S_ISREG(status.st_mode)) return descriptor;
  throw host::DeviceError(file.string() + ": no regular file; name the directory or the archive of a package");
}

// Programs of other systems write "\" between the names.
std::string PathOf(const ZipEntry& entry) {
  std::string path = entry.name;
  if (path.find('/') == std::string::npos) std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

// A NUL would end the whole text.
std::string Named(const std::string& entry) { return ": entry \"" + entry.substr(0, entry.find('\0')) + "\""; }

bool IsDirectory(const ZipEntry& entry) { return !entry.name.empty() && PathOf(entry).back() == '/'; }

}  // namespace

Archive::Archive(const fs::path& file, const ArchiveLimits& limits) : name_(file.string()), file_(OpenArchive(file)) {
  try {
    ReadEntries(limits);
  } catch (const ZipProblem& problem) {
    RefuseDamaged(problem.entry, problem.what());
  } catch (const BeyondBytes&) {
    RefuseDamaged("", "it ends too early");
  } catch (const std::system_error& error) {
    host::ThrowFileError(file, "read", error.code().value());
  }
}

void Archive::ReadEntries(const ArchiveLimits& limits) {
  const auto size = static_cast<std::uint64_t>(lseek(file_.get(), 0, SEEK_END));
  FileBytes directory(file_.get(), kDirectoryWindow);
  FileBytes headers(file_.get(), kHeaderWindow);
  ArchivePaths paths(limits);
  std::uint64_t bytes = 0;
  ReadZipDirectory(directory, size, [&](ZipEntry entry) {
    RequirePlain(entry);
    ArchiveEntry told;
    told.directory = IsDirectory(entry);
    if (const std::string why = paths.Add(PathOf(entry), told.directory, told.path); !why.empty()) {
      Refuse(entry.name, why);
    }
    RequireRoom(entry, bytes, size, limits);
    FindContent(headers, entry);
    bytes += entry.size;
    told.permissions = static_cast<fs::perms>(entry.mode == 0 ? 0644U : entry.mode & 0777U);
    told.size = entry.size;
    told.content = entry.content;
    told.packed_size = entry.packed_size;
    told.checksum = entry.checksum;
    told.deflated = entry.method == kDeflated;
    if (!told.path.empty()) entries_.push_back(std::move(told));  // an empty one is the package's own directory
  });
  RequireApart(size);
}

void Archive::RefuseDamaged(const std::string& entry, const std::string& why) const {
  throw host::DeviceError((entry.empty() ? name_ : name_ + Named(entry)) + ": no zip archive, cut off or damaged (" +
                          why + "); make it anew, or fetch it again");
}

void Archive::Refuse(const std::string& entry, const std::string& why) const {
  throw host::DeviceError(name_ + Named(entry) + " " + why);
}

void Archive::RequirePlain(const ZipEntry& entry) const {
  if (entry.IsEncrypted()) Refuse(entry.name, "is encrypted; pack it without a password");
  if (S_ISLNK(entry.mode)) Refuse(entry.name, "is a link; pack the file itself in its place");
  const unsigned type = entry.mode & S_IFMT;
  if (type != 0 && type != S_IFREG && type != S_IFDIR) {
    Refuse(entry.name, "is no file and no directory; take it out of the archive");
  }
  const bool contradiction = IsDirectory(entry) ? type == S_IFREG || entry.size != 0 : type == S_IFDIR;
  if (contradiction) Refuse(entry.name, "is told to be a file and a directory at once; pack the archive anew");
  if (entry.method != kStored && entry.method != kDeflated) {
    Refuse(entry.name, "is compressed in another way than by deflate; pack it with zip's own settings");
  }
}

// By what the entry says of itself; what it really holds is held to that when it is unpacked.
void Archive::RequireRoom(const ZipEntry& entry, std::uint64_t before, std::uint64_t own_size,
                          const ArchiveLimits& limits) const {
  if (entry.size > limits.bytes - before) {
    Refuse(entry.name, "makes the package larger than " + std::to_string(limits.bytes) + " bytes; make it smaller");
  }
  const std::uint64_t total = before + entry.size;
  if (total > limits.unsuspicious_bytes && total / limits.ratio > own_size) {
    Refuse(entry.name,
           "unpacks to more than " + std::to_string(limits.ratio) +
               " times the archive's size, which no package does; install it from a directory if it is to be trusted");
  }
  if (entry.method == kStored && entry.packed_size != entry.size) {
    RefuseDamaged(entry.name, "it is stored, but not as long as it says");
  }
}

// A few bytes that serve many entries would unpack to far more than the archive holds.
void Archive::RequireApart(std::uint64_t size) const {
  std::vector<const ArchiveEntry*> in_place;
  for (const ArchiveEntry& entry : entries_) in_place.push_back(&entry);
  std::sort(in_place.begin(), in_place.end(), [](const ArchiveEntry* a, const ArchiveEntry* b) {
    return a->content != b->content ? a->content < b->content : a->packed_size < b->packed_size;
  });
  for (std::size_t i = 0; i < in_place.size(); ++i) {
    const std::uint64_t next = i + 1 < in_place.size() ? in_place[i + 1]->content : size;
    const ArchiveEntry& entry = *in_place[i];
    if (entry.content > next || entry.packed_size > next - entry.content) {
      RefuseDamaged(entry.path, "it reaches into what follows");
    }
  }
}

ArchiveContent::ArchiveContent(const Archive& archive, const ArchiveEntry& entry) : archive_(archive), entry_(entry) {
  if (inflateInit2(&stream_, -MAX_WBITS) != Z_OK) throw std::bad_alloc();
}

ArchiveContent::~ArchiveContent() { inflateEnd(&stream_); }

std::string_view ArchiveContent::Next(std::size_t most) {
  const std::string_view piece = entry_.deflated ? Unpack(most) : ReadPacked(most);
  unpacked_ += piece.size();
  const bool too_short = piece.empty() && unpacked_ < entry_.size;
  if (unpacked_ > entry_.size || too_short) archive_.RefuseDamaged(entry_.path, "it is not as long as it says");
  return piece;
}

std::string_view ArchiveContent::ReadPacked(std::size_t most) {
  packed_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(most, entry_.packed_size - read_)));
  const off_t place = static_cast<off_t>(entry_.content + read_);
  const ssize_t count = TEMP_FAILURE_RETRY(pread(archive_.file(), packed_.data(), packed_.size(), place));
  if (count < 0) archive_.RefuseDamaged(entry_.path, host::ErrorText(errno));
  packed_.resize(static_cast<std::size_t>(count));
  read_ += packed_.size();
  return packed_;
}

std::string_view ArchiveContent::Unpack(std::size_t most) {
  piece_.resize(most);
  stream_.next_out = reinterpret_cast<Bytef*>(piece_.data());
  stream_.avail_out = static_cast<uInt>(most);
  int result = Z_OK;
  while (stream_.avail_out > 0 && result == Z_OK) {
    if (stream_.avail_in == 0) {
      const std::string_view packed = ReadPacked(kPackedPiece);
      stream_.next_in = reinterpret_cast<Bytef*>(packed_.data());
      stream_.avail_in = static_cast<uInt>(packed.size());
    }
    result = inflate(&stream_, Z_NO_FLUSH);
  }
  if (stream_.avail_out == most && result != Z_OK && result != Z_STREAM_END) {
    archive_.RefuseDamaged(entry_.path, stream_.msg == nullptr ? "its content ends too early" : stream_.msg);
  }
  piece_.resize(most - stream_.avail_out);
  return piece_;
}

void ReadContent(const Archive& archive, const ArchiveEntry& entry, const std::function<void(std::string_view)>& take) {
  ArchiveContent content(archive, entry);
  uLong checksum = 0;
  for (std::string_view piece = content.Next(kPiece); !piece.empty(); piece = content.Next(kPiece)) {
    checksum = crc32(checksum, reinterpret_cast<const Bytef*>(piece.data()), static_cast<uInt>(piece.size()));
    take(piece);
  }
  if (checksum != entry.checksum) archive.RefuseDamaged(entry.path, "its checksum is wrong");
}

}  // namespace orvelbox
