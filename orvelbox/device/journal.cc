// The record of the pending operation on disk.
#include "orvelbox/device/journal.h"

#include <algorithm>
#include <iterator>

#include "orvelbox/desk/tree.h"
#include "orvelbox/device/cache_text.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

constexpr const char* kBegun = "begun";
constexpr const char* kDecided = "decided";

constexpr const char* kOperations[] = {"install", "upgrade", "uninstall"};  // in the order of Operation

// Reads "OPERATION PACKAGE".
Pending Parse(const fs::path& file, const std::string& text, bool decided) {
  const std::size_t blank = std::min(text.find(' '), text.size());
  const auto* const found = std::find(std::begin(kOperations), std::end(kOperations), text.substr(0, blank));
  if (found == std::end(kOperations) || blank + 1 >= text.size()) {
    throw host::DeviceError(file.string() + ": damaged; remove " + file.parent_path().string() +
                            ", and uninstall the package that was worked on last");
  }
  return {static_cast<Operation>(found - kOperations), text.substr(blank + 1), decided};
}

}  // namespace

void Journal::Begin(Operation operation, const std::string& package_id) const {
  const auto write_record = [&] {
    RemoveTree(Temporary());
    host::MakeDirectory(Temporary());
    host::CreateFile(Temporary() / kBegun, std::string(kOperations[static_cast<int>(operation)]) + " " + package_id);
    for (const char* name : kCacheFiles) {
      if (const CacheText text = ReadCache(device_, name)) host::CreateFile(Temporary() / name, *text);
    }
    Move(Temporary(), Directory());
  };
  WithRollback(write_record, [&] { RemoveTree(Temporary()); });
}

void Journal::Decide() const {
  if (IsThere(Directory())) Move(Directory() / kBegun, Directory() / kDecided);
}

// Renames the copies, which is atomic and needs no disk space. A missing copy was restored already.
void Journal::RestoreCaches() const {
  for (const char* name : kCacheFiles) {
    const fs::path copy = Directory() / name;
    if (IsThere(copy) && ReadCache(device_, name) != host::ReadFile(copy)) {
      Move(copy, device_.OnDesk(kCacheDirectory) / name);
    }
  }
}

void Journal::End() const {
  RemoveTree(Temporary());
  if (IsThere(Directory())) Move(Directory(), Temporary());
  RemoveTree(Temporary());
}

std::optional<Pending> Journal::Read() const {
  if (!IsThere(Directory())) return std::nullopt;
  const bool decided = IsThere(Directory() / kDecided);
  const fs::path file = Directory() / (decided ? kDecided : kBegun);
  return Parse(file, host::ReadFile(file), decided);
}

}  // namespace orvelbox
