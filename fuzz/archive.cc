// The archive reader: whatever the bytes are, only paths that stay inside come out of it, and never more than the
// limits allow.
#include "orvelbox/package/archive.h"

#include <set>
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "platform/host/device.h"

namespace {

using fuzz::Require;
using orvelbox::ArchiveEntry;
using orvelbox::ArchiveLimits;

constexpr const char* kName = "archive.opk";

// Small enough for an input to reach them.
ArchiveLimits SmallLimits() {
  ArchiveLimits limits;
  limits.entries = 8;
  limits.bytes = 4096;
  limits.ratio = 4;
  limits.unsuspicious_bytes = 256;
  limits.path_bytes = 40;
  limits.depth = 4;
  return limits;
}

// The names of a path, with what is between its slashes as it is.
std::vector<std::string> NamesOf(const std::string& path) {
  std::vector<std::string> names = {""};
  for (const char c : path) {
    if (c == '/') {
      names.emplace_back();
    } else {
      names.back() += c;
    }
  }
  return names;
}

// Takes note and holds the reader to its promises.
class Watch : public orvelbox::ArchiveReceiver {
 public:
  explicit Watch(const ArchiveLimits& limits) : limits_(limits) {}

  void Begin(const ArchiveEntry& entry) override {
    CheckPath(entry.path);
    Require((entry.permissions & ~std::filesystem::perms::all) == std::filesystem::perms::none &&
                (entry.permissions & (std::filesystem::perms::set_uid | std::filesystem::perms::set_gid |
                                      std::filesystem::perms::sticky_bit)) == std::filesystem::perms::none,
            "permissions are those of owner, group and others");
    in_file_ = !entry.directory;
    if (in_file_) Require(files_.insert(entry.path).second, "no file comes twice");
    Require(++entries_ <= limits_.entries, "there are no more entries than allowed");
  }

  void Content(std::string_view piece) override {
    Require(in_file_, "only files have content");
    bytes_ += piece.size();
    Require(bytes_ <= limits_.bytes, "there are no more bytes than allowed");
  }

 private:
  void CheckPath(const std::string& path) const {
    Require(path.size() <= limits_.path_bytes, "no path is longer than allowed");
    const std::vector<std::string> names = NamesOf(path);
    Require(names.size() <= limits_.depth, "no path is deeper than allowed");
    for (const std::string& name : names) {
      Require(!name.empty() && name != "." && name != "..", "a path leads down, name by name");
      Require(name.find_first_of(std::string("\\\0", 2)) == std::string::npos, "a name is one everywhere");
    }
  }

  ArchiveLimits limits_;
  std::set<std::string> files_;
  std::uint64_t entries_ = 0;
  std::uint64_t bytes_ = 0;
  bool in_file_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ArchiveLimits limits = SmallLimits();
  Watch watch(limits);
  try {
    orvelbox::ReadArchive({reinterpret_cast<const char*>(data), size}, kName, limits, watch);
  } catch (const host::DeviceError& error) {
    Require(std::string(error.what()).find(kName) != std::string::npos, "a refusal names the archive");
  }
  return 0;
}
