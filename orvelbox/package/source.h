// A package as people name it: its directory, or an archive that is unpacked for as long as it is worked on.
#ifndef ORVEL_ORVELBOX_PACKAGE_SOURCE_H_
#define ORVEL_ORVELBOX_PACKAGE_SOURCE_H_

#include <filesystem>
#include <functional>

#include "orvelbox/package/archive_limits.h"

namespace orvelbox {

// Unpacks the archive `file` into the new directory `to`, whose parent exists. Throws host::DeviceError when the
// archive is refused or the system refuses; then there is nothing at `to`.
void Unpack(const std::filesystem::path& file, const std::filesystem::path& to, const ArchiveLimits& limits = {});

// Whether `package` names an archive: something that is there and no directory.
bool IsArchive(const std::filesystem::path& package);

// Where archives are unpacked to.
struct UnpackPlace {
  std::filesystem::path directory;  // not there yet
  std::function<void()> remove;     // takes away what is there in the end; nothing there is no error
};

// Runs `work` with the directory of the package `package`; an archive is unpacked at `place` meanwhile. Throws
// host::DeviceError, also what `work` throws, with the archive's name wherever the text names the place.
void WithPackage(const std::filesystem::path& package, const UnpackPlace& place,
                 const std::function<void(const std::filesystem::path& directory)>& work);

}  // namespace orvelbox

#endif
