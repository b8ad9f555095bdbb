// Packages from directories and archives, and the unpacking of these.
#include "orvelbox/package/source.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <boost/algorithm/string/replace.hpp>
#include <cerrno>
#include <string>

#include "base/unique_fd.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/package/archive.h"
#include "platform/host/device.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

void WithArchive(const fs::path& archive, const UnpackPlace& place, const std::function<void(const fs::path&)>& work) {
  const auto unpack_and_work = [&] {
    Unpack(archive, place.directory);
    work(place.directory);
  };
  try {
    WithRollback(unpack_and_work, place.remove);
    place.remove();
  } catch (const host::DeviceError& error) {
    throw host::DeviceError(
        boost::replace_all_copy(std::string(error.what()), place.directory.string(), archive.string()));
  }
}

// Below a directory that holds nothing but what this writes: paths are plain and no link ever stands there.
void WriteEntry(const Archive& archive, const ArchiveEntry& entry, const fs::path& place) {
  host::MakeDirectory(entry.directory ? place : place.parent_path());
  if (entry.directory) return;
  const UniqueFd file(open(place.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  // The owner can always read what was unpacked.
  const mode_t mode = static_cast<mode_t>(entry.permissions) | S_IRUSR | S_IWUSR;
  if (!file || fchmod(file.get(), mode) != 0) host::ThrowFileError(place, "create", errno);
  ReadContent(archive, entry, [&](std::string_view piece) {
    const int error = host::WriteAll(file.get(), piece);
    if (error != 0) host::ThrowFileError(place, "write", error);
  });
  Activity::CountFile();
}

}  // namespace

bool IsArchive(const fs::path& package) {
  std::error_code ignored;
  return fs::exists(package, ignored) && !fs::is_directory(package, ignored);
}

void WithPackage(const fs::path& package, const UnpackPlace& place, const std::function<void(const fs::path&)>& work) {
  if (IsArchive(package)) {
    WithArchive(package, place, work);
  } else {
    work(package);
  }
}

void Unpack(const fs::path& file, const fs::path& to, const ArchiveLimits& limits) {
  const auto unpack = [&] {
    const Archive archive(file, limits);
    host::MakeDirectory(to);
    for (const ArchiveEntry& entry : archive.entries()) WriteEntry(archive, entry, to / entry.path);
  };
  WithRollback(unpack, [&] { RemoveTree(to); });
}

}  // namespace orvelbox
