// Directories and archives, listed once and read where they stand.
#include "orvelbox/check/package_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/unique_fd.h"
#include "orvelbox/desk/bytes.h"
#include "orvelbox/package/source.h"
#include "platform/host/device_error.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// Of a file on the disk a few headers are read; of one in an archive all that stands before them as well.
constexpr std::size_t kWindow = 4096;
constexpr std::size_t kLeastUnpacked = 1024;
constexpr std::size_t kMostUnpacked = std::size_t{8} << 20;

// What the walk sees of an entry; it passes over what is neither file nor directory, nor a link to one. Asks in the way
// that makes no system call when the directory told the type.
unsigned char TypeOf(const fs::directory_entry& entry) {
  std::error_code ignored;
  const bool link = entry.is_symlink(ignored);
  if (entry.is_directory(ignored)) return link ? DT_LNK : DT_DIR;
  if (entry.is_regular_file(ignored)) return link ? DT_LNK : DT_REG;
  return DT_FIFO;
}

// The tree of the directory `root`.
Listing ListTree(const fs::path& root) {
  Listing listing;
  try {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
      std::string_view path = entry.path().native();
      path.remove_prefix(root.native().size());
      while (path.front() == '/') path.remove_prefix(1);
      listing.Add(path, TypeOf(entry));
    }
  } catch (const fs::filesystem_error& error) {
    host::ThrowFileError(error.path1().empty() ? root : error.path1(), "read", error.code().value());
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

// As much of a packed file as was asked for.
class UnpackedBytes : public ByteSource {
 public:
  UnpackedBytes(const Archive& archive, const ArchiveEntry& entry) : content_(archive, entry) {}

  std::string_view Read(std::uint64_t at, std::size_t length) override {
    if (at > kMostUnpacked || length > kMostUnpacked - at) throw BeyondBytes();
    const std::size_t end = static_cast<std::size_t>(at) + length;
    while (bytes_.size() < end) {
      const std::string_view piece = content_.Next(std::max(end - bytes_.size(), kLeastUnpacked));
      if (piece.empty()) throw BeyondBytes();
      bytes_ += piece;
    }
    return {bytes_.data() + at, length};
  }

 private:
  ArchiveContent content_;
  std::string bytes_;
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
    const ArchiveEntry& entry = **std::lower_bound(by_path_.begin(), by_path_.end(), path,
                                                   [](const auto* one, const auto& asked) { return one->path < asked; });
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
