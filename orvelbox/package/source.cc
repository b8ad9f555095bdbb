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
#include "platform/host/device.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

void WithArchive(const fs::path& archive, const UnpackPlace& place, const std::function<void(const fs::path&)>& work) {
  const auto unpack_and_work = [&] {
    Unpack(archive, place.directory, {}, place.wanted);
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

// Writes below a directory that holds nothing but what this writes: paths are plain and no link ever stands there.
class TreeWriter : public ArchiveReceiver {
 public:
  TreeWriter(const fs::path& to, const Wanted& wanted) : to_(to), wanted_(wanted) {}

  void Begin(const ArchiveEntry& entry) override {
    current_ = to_ / entry.path;
    host::MakeDirectory(entry.directory ? current_ : current_.parent_path());
    if (entry.directory) return;
    file_ = UniqueFd(open(current_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    // The owner can always read what was unpacked.
    const mode_t mode = static_cast<mode_t>(entry.permissions) | S_IRUSR | S_IWUSR;
    if (!file_ || fchmod(file_.get(), mode) != 0) host::ThrowFileError(current_, "create", errno);
    writing_ = wanted_(entry.path);
    Activity::CountFile();
  }

  void Content(std::string_view piece) override {
    if (!writing_) return;
    const int error = host::WriteAll(file_.get(), piece);
    if (error != 0) host::ThrowFileError(current_, "write", error);
  }

 private:
  fs::path to_;
  const Wanted& wanted_;
  fs::path current_;
  UniqueFd file_;
  bool writing_ = false;
};

}  // namespace

void WithPackage(const fs::path& package, const UnpackPlace& place, const std::function<void(const fs::path&)>& work) {
  std::error_code ignored;
  const bool archive = fs::exists(package, ignored) && !fs::is_directory(package, ignored);
  if (archive) {
    WithArchive(package, place, work);
  } else {
    work(package);
  }
}

void Unpack(const fs::path& file, const fs::path& to, const ArchiveLimits& limits, const Wanted& wanted) {
  const auto unpack = [&] {
    host::MakeDirectory(to);
    TreeWriter writer(to, wanted);
    ReadArchive(file, limits, writer);
  };
  WithRollback(unpack, [&] { RemoveTree(to); });
}

}  // namespace orvelbox
