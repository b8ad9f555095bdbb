// The archive reader: for any input, the resulting paths stay inside the package and the limits hold.
#include "orvelbox/package/archive.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/input.h"
#include "fuzz/memory_file.h"
#include "platform/host/device.h"

namespace {

using fuzz::Require;
using orvelbox::Archive;
using orvelbox::ArchiveEntry;
using orvelbox::ArchiveLimits;
using std::filesystem::perms;

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

// The names in a path: the texts between its slashes, unchanged.
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

// Checks the properties that the reader must have.
class Watch {
 public:
  explicit Watch(const ArchiveLimits& limits) : limits_(limits) {}

  void Read(const Archive& archive) {
    for (const ArchiveEntry& entry : archive.entries()) {
      CheckEntry(entry);
      if (!entry.directory) CheckContent(archive, entry);
    }
  }

 private:
  void CheckEntry(const ArchiveEntry& entry) {
    CheckPath(entry.path);
    Require((entry.permissions & ~(perms::owner_all | perms::group_all | perms::others_all)) == perms::none,
            "permissions are those of owner, group and others");
    Require(entry.directory || files_.insert(entry.path).second, "no file comes twice");
    Require(++entries_ <= limits_.entries, "there are no more entries than allowed");
  }

  void CheckContent(const Archive& archive, const ArchiveEntry& entry) {
    std::uint64_t size = 0;
    orvelbox::ReadContent(archive, entry, [&](std::string_view piece) { size += piece.size(); });
    Require(size == entry.size, "a file is as long as its entry says");
    bytes_ += size;
    Require(bytes_ <= limits_.bytes, "there are no more bytes than allowed");
  }

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
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::MemoryFile file;
  file.Append({reinterpret_cast<const char*>(data), size});
  const ArchiveLimits limits = SmallLimits();
  try {
    Watch(limits).Read(Archive(file.Path(), limits));
  } catch (const host::DeviceError& error) {
    Require(std::string(error.what()).find(file.Path()) != std::string::npos, "a refusal names the archive");
  }
  return 0;
}
