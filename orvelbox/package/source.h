// A package as people name it: its directory, or an archive that is unpacked for as long as it is worked on.
#ifndef ORVEL_ORVELBOX_PACKAGE_SOURCE_H_
#define ORVEL_ORVELBOX_PACKAGE_SOURCE_H_

#include <filesystem>
#include <functional>
#include <string>

#include "orvelbox/package/archive.h"

namespace orvelbox {

// Whether the content of the file at `path` (as in ArchiveEntry) is wanted.
using Wanted = std::function<bool(const std::string& path)>;

// Unpacks the archive `file` into the new directory `to`, whose parent exists. Files whose content is not wanted are
// left empty. Throws host::DeviceError when the archive is refused or the system refuses; then there is nothing at
// `to`.
void Unpack(
    const std::filesystem::path& file, const std::filesystem::path& to, const ArchiveLimits& limits = {},
    const Wanted& wanted = [](const std::string&) { return true; });

// Where archives are unpacked to.
struct UnpackPlace {
  std::filesystem::path directory;  // not there yet
  std::function<void()> remove;     // takes away what is there in the end; nothing there is no error
  Wanted wanted = [](const std::string&) { return true; };
};

// Runs `work` with the directory of the package `package`; an archive is unpacked at `place` meanwhile. Throws
// host::DeviceError, also what `work` throws, with the archive's name wherever the text names the place.
void WithPackage(const std::filesystem::path& package, const UnpackPlace& place,
                 const std::function<void(const std::filesystem::path& directory)>& work);

}  // namespace orvelbox

#endif
