// Directories and archives, listed once and read where they stand.
#include "orvelbox/check/package_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "base/unique_fd.h"
#include "orvelbox/desk/bytes.h"
#include "orvelbox/package/archive.h"
#include "orvelbox/package/source.h"
#include "platform/host/device_error.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// Of a file on the disk a few headers are read; of one in an archive all that stands before them as well. In bytes.
constexpr std::size_t kWindow = 4096;
constexpr std::size_t kHead = 4096;
constexpr std::size_t kPiece = 8192;
constexpr std::size_t kMostUnpacked = std::size_t{8} << 20;

struct CloseDirectory {
  void operator()(DIR* directory) const { closedir(directory); }
};

// What the walk sees of an entry; it passes over what is neither file nor directory, nor a link to one.
unsigned char TypeOf(const dirent& entry, const std::string& path) {
  struct stat status {};
  unsigned char type = entry.d_type;
  if (type == DT_UNKNOWN && lstat(path.c_str(), &status) == 0) {
    type = static_cast<unsigned char>(IFTODT(status.st_mode));
  }
  if (type != DT_LNK) return type;
  const bool counts = stat(path.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
  return counts ? DT_LNK : DT_FIFO;
}

// Adds the entries of the directory `below`, which is "" or ends in "/", of the tree `root`, and puts its
// subdirectories on `waiting`.
void ListDirectory(const std::string& root, const std::string& below, Listing& listing,
                   std::vector<std::string>& waiting) {
  const std::string path = root + "/" + below;
  const std::unique_ptr<DIR, CloseDirectory> directory(opendir(path.c_str()));
  if (directory == nullptr) host::ThrowFileError(path, "read", errno);
  for (errno = 0; const dirent* entry = readdir(directory.get()); errno = 0) {
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    const unsigned char type = TypeOf(*entry, path + entry->d_name);
    listing.Add(below + entry->d_name, type);
    if (type == DT_DIR) waiting.push_back(below + entry->d_name + "/");
  }
  if (errno != 0) host::ThrowFileError(path, "read", errno);
}

// The tree of the directory `root`.
Listing ListTree(const fs::path& root) {
  Listing listing;
  for (std::vector<std::string> waiting = {""}; !waiting.empty();) {
    const std::string below = std::move(waiting.back());
    waiting.pop_back();
    ListDirectory(root, below, listing, waiting);
  }
  return listing;
}

// The directories that the plug-in opens by their paths, and so through links as well.
void AddLinkedDirectories(const fs::path& root, Listing& listing) {
  for (const char* path : {"netcoreapp", "framework", "d.pc", "tvappapi", "lib", "shared", "shared/res"}) {
    std::error_code ignored;
    if (!fs::is_symlink(root / path, ignored) || !fs::is_directory(root / path, ignored)) continue;
    listing.AddLinked(path, ListTree(fs::canonical(root / path)));
  }
}

class FilesOfDirectory : public PackageFiles {
 public:
  FilesOfDirectory(fs::path root, Listing listing) : PackageFiles(std::move(listing)), root_(std::move(root)) {}

  DllCopy FactsOf(const std::string& path) const override {
    const UniqueFd file(open((root_ / path).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) return {};
    const auto size = static_cast<std::uint64_t>(status.st_size);
    FileBytes bytes(file.get(), kWindow);
    try {
      return {size, ReadAssemblyVersion(bytes, size)};
    } catch (const std::system_error&) {
      return {size, std::nullopt};  // known all the same
    }
  }

 private:
  fs::path root_;
};

// The bytes of a packed file, read forwards. The headers at its beginning and a window of what was unpacked last are
// kept.
class UnpackedBytes : public ByteSource {
 public:
  UnpackedBytes(const Archive& archive, const ArchiveEntry& entry) : content_(archive, entry) {}

  std::string_view Read(std::uint64_t at, std::size_t length) override {
    if (at > kMostUnpacked || length > kWindow) throw BeyondBytes();
    const auto begin = static_cast<std::size_t>(at);
    while (end_ < begin + length) Unpack();
    if (begin + length <= head_.size()) return {head_.data() + begin, length};
    const std::size_t window_begin = end_ - window_.size();
    if (begin < window_begin) throw BeyondBytes();
    return {window_.data() + (begin - window_begin), length};
  }

 private:
  void Unpack() {
    const std::string_view piece = content_.Next(kPiece);
    if (piece.empty()) throw BeyondBytes();
    end_ += piece.size();
    if (head_.size() < kHead) head_ += piece.substr(0, kHead - head_.size());
    window_ += piece;
    if (window_.size() > 2 * kWindow) window_.erase(0, window_.size() - kWindow);
  }

  ArchiveContent content_;
  std::string head_;
  std::string window_;
  std::size_t end_ = 0;  // of what was unpacked
};

Listing ListingOf(const Archive& archive) {
  Listing listing;
  for (const ArchiveEntry& entry : archive.entries()) listing.Add(entry.path, entry.directory ? DT_DIR : DT_REG);
  return listing;
}

class FilesOfArchive : public PackageFiles {
 public:
  explicit FilesOfArchive(Archive archive) : PackageFiles(ListingOf(archive)), archive_(std::move(archive)) {
    for (const ArchiveEntry& entry : archive_.entries()) by_path_.push_back(&entry);
    std::sort(by_path_.begin(), by_path_.end(), [](const auto* a, const auto* b) { return a->path < b->path; });
  }

  DllCopy FactsOf(const std::string& path) const override {
    const ArchiveEntry& entry = **std::lower_bound(
        by_path_.begin(), by_path_.end(), path, [](const auto* one, const auto& asked) { return one->path < asked; });
    UnpackedBytes bytes(archive_, entry);
    return {entry.size, ReadAssemblyVersion(bytes, entry.size)};
  }

 private:
  Archive archive_;
  std::vector<const ArchiveEntry*> by_path_;
};

}  // namespace

Files FilesIn(const fs::path& root) {
  std::error_code error;
  const fs::path place = fs::canonical(root, error);
  Listing listing;
  if (error && error != std::errc::no_such_file_or_directory) host::ThrowFileError(root, "read", error.value());
  if (!error) {
    listing = ListTree(place);
    AddLinkedDirectories(place, listing);
  }
  return std::make_shared<FilesOfDirectory>(place, std::move(listing));
}

OpenedPackage OpenPackage(const fs::path& package) {
  if (IsArchive(package)) {
    Archive archive(package);
    Manifest manifest = ReadManifest(archive);
    return {std::move(manifest), std::make_shared<FilesOfArchive>(std::move(archive))};
  }
  Manifest manifest = ReadManifest(package);
  return {std::move(manifest), FilesIn(package)};
}

}  // namespace orvelbox
