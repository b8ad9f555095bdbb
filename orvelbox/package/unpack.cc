// Files and directories out of an archive.
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "base/unique_fd.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/desk/with_rollback.h"
#include "orvelbox/package/source.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

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

void Unpack(const fs::path& file, const fs::path& to, const ArchiveLimits& limits, const Wanted& wanted) {
  const auto unpack = [&] {
    host::MakeDirectory(to);
    TreeWriter writer(to, wanted);
    ReadArchive(file, limits, writer);
  };
  WithRollback(unpack, [&] { RemoveTree(to); });
}

}  // namespace orvelbox
