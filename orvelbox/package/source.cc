// Packages from directories and archives.
#include "orvelbox/package/source.h"

#include <string>

#include "orvelbox/desk/with_rollback.h"
#include "platform/host/device.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

void WithArchive(const fs::path& archive, const UnpackPlace& place, const std::function<void(const fs::path&)>& work) {
  const auto unpack_and_work = [&] {
    Unpack(archive, place.directory);
    work(place.directory);
  };
  try {
    WithRollback(unpack_and_work, place.remove);
    place.remove();
  } catch (const host::DeviceError& error) {
    throw host::DeviceError(Replaced(error.what(), place.directory.string(), archive.string()));
  }
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

}  // namespace orvelbox
