// Puts the files of a package archive on the disk.
#ifndef ORVEL_ORVELBOX_PACKAGE_UNPACK_H_
#define ORVEL_ORVELBOX_PACKAGE_UNPACK_H_

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

}  // namespace orvelbox

#endif
