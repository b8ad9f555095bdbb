// Directories and archives, listed once and read where they stand.
#include "orvelbox/check/package_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <string_view>
#include <unordered_map>

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
constexpr std::size_t kMostUnpacked = std::size_t{8} << 20;

unsigned char TypeOf(fs::file_type type) {
  switch (type) {
    case fs::file_type::regular:
      return DT_REG;
    case fs::file_type::directory:
      return DT_DIR;
    case fs::file_type::symlink:
      return DT_LNK;
    default:
      return DT_FIFO;  // whatever it is, the walk passes it over
  }
}

void ListTree(const fs::path& root, const fs::path& part, Listing& listing) {
  const std::size_t root_length = root.native().size() + 1;
  try {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(part)) {
      std::string_view path = entry.path().native();
      path.remove_prefix(root_length);
      const unsigned char type = TypeOf(entry.symlink_status().type());
      if (type != DT_DIR && !LooksLikeDll(path)) continue;
      std::error_code ignored;
      const bool followed = type == DT_LNK && (entry.is_regular_file(ignored) || entry.is_directory(ignored));
      listing.Add(path, type, followed);
    }
  } catch (const fs::filesystem_error& error) {
    host::ThrowFileError(error.path1().empty() ? part : error.path1(), "read", error.code().value());
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
    } catch (const host::DeviceError&) {
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
      const std::string_view piece = content_.Next();
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
    for (const ArchiveEntry& entry : archive_.entries()) {
      if (LooksLikeDll(entry.path)) entries_.emplace(entry.path, &entry);
    }
  }

  DllCopy FactsOf(const std::string& path) const override {
    const ArchiveEntry& entry = *entries_.at(path);
    UnpackedBytes bytes(archive_, entry);
    return {entry.size, ReadAssemblyVersion(bytes, entry.size)};
  }

 private:
  Archive archive_;
  std::unordered_map<std::string_view, const ArchiveEntry*> entries_;
};

}  // namespace

Files FilesIn(const fs::path& root, const std::string& part) {
  Listing listing;
  std::error_code ignored;
  if (fs::is_directory(root / part, ignored)) ListTree(root, part.empty() ? root : root / part, listing);
  return std::make_shared<FilesOfDirectory>(root, std::move(listing));
}

OpenedPackage OpenPackage(const fs::path& package) {
  if (IsArchive(package)) {
    Archive archive(package);
    Manifest manifest = ReadManifest(archive);
    return {std::move(manifest), std::make_shared<FilesOfArchive>(std::move(archive))};
  }
  Manifest manifest = ReadManifest(package);
  return {std::move(manifest), FilesIn(fs::canonical(package))};
}

}  // namespace orvelbox
