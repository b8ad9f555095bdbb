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

int WithArchive(const fs::path& archive, const Scratch& scratch, const std::function<int(const fs::path&)>& work) {
  const auto unpack_and_work = [&] {
    Unpack(archive, scratch.directory, {}, scratch.wanted);
    return work(scratch.directory);
  };
  try {
    const int result = Attempt(unpack_and_work, scratch.remove);
    scratch.remove();
    return result;
  } catch (const host::DeviceError& error) {
    throw host::DeviceError(Replaced(error.what(), scratch.directory.string(), archive.string()));
  }
}

}  // namespace

int WithPackage(const fs::path& package, const Scratch& scratch, const std::function<int(const fs::path&)>& work) {
  std::error_code ignored;
  const bool archive = fs::exists(package, ignored) && !fs::is_directory(package, ignored);
  return archive ? WithArchive(package, scratch, work) : work(package);
}

}  // namespace orvelbox
