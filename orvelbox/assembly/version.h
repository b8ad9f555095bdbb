// The version of a .NET assembly, read from the file's own metadata (ECMA-335, partition II). Nothing is loaded or run.
#ifndef ORVEL_ORVELBOX_ASSEMBLY_VERSION_H_
#define ORVEL_ORVELBOX_ASSEMBLY_VERSION_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "orvelbox/desk/bytes.h"

namespace orvelbox {

// Major, minor, build and revision number. Compares like versions.
using AssemblyVersion = std::array<std::uint16_t, 4>;

// The version that the assembly in `file`, of `size` bytes, declares. Nothing when it is no assembly or damaged. Reads
// headers and metadata only. Throws the exceptions of `file`, except BeyondBytes.
std::optional<AssemblyVersion> ReadAssemblyVersion(ByteSource& file, std::uint64_t size);

// "1.2.3.4".
std::string ToString(const AssemblyVersion& version);

}  // namespace orvelbox

#endif
