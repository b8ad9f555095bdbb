// Is a device sound? Judged without the code of orvelbox: by the files, and by SQLite's own reading of the database.
#ifndef TESTS_LOAD_SOUNDNESS_H_
#define TESTS_LOAD_SOUNDNESS_H_

#include <string>
#include <vector>

#include "platform/host/device.h"
#include "tests/load/known_packages.h"

namespace load {

// kPluginHindered: the plug-in could not write everything, which it may not report. Its effects (the removed duplicates
// and the cache files) are not judged.
enum class Strictness { kComplete, kPluginHindered };

// One line per fault; none for a sound device. The device must hold only packages of `known`, and must not be in use.
std::vector<std::string> FaultsOf(const host::Device& device, const KnownPackages& known, Strictness strictness);

// The versions of the installed packages by id, as the database has them.
std::map<std::string, std::string> InstalledVersions(const host::Device& device);

}  // namespace load

#endif
