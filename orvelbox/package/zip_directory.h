// The records of a zip file: what its directory and the header before each content say, held to each other. What an
// archive may hold is decided in archive.
#ifndef ORVEL_ORVELBOX_PACKAGE_ZIP_DIRECTORY_H_
#define ORVEL_ORVELBOX_PACKAGE_ZIP_DIRECTORY_H_

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "orvelbox/desk/bytes.h"

namespace orvelbox {

// What one entry says of itself.
struct ZipEntry {
  std::string name;  // its bytes as they are
  std::uint16_t flags = 0;
  std::uint16_t method = 0;
  std::uint16_t mode = 0;  // as in stat(); 0 where the archive was made on a system without modes
  std::uint32_t checksum = 0;
  std::uint64_t packed_size = 0;
  std::uint64_t size = 0;     // unpacked
  std::uint64_t header = 0;   // where its own header stands in the file
  std::uint64_t content = 0;  // where its content does

  bool IsEncrypted() const { return (flags & 0x2041U) != 0; }
};

inline constexpr std::uint16_t kStored = 0;
inline constexpr std::uint16_t kDeflated = 8;

// Why a file is no zip file, or a damaged one; `entry` is empty unless it is about one.
struct ZipProblem : std::runtime_error {
  explicit ZipProblem(const std::string& why, std::string which = "")
      : std::runtime_error(why), entry(std::move(which)) {}
  std::string entry;
};

// Calls `take` for the entries of the zip file `file`, of `size` bytes, in the directory's order. Throws ZipProblem,
// and what `file` and `take` throw.
void ReadZipDirectory(ByteSource& file, std::uint64_t size, const std::function<void(ZipEntry)>& take);

// Finds the content of `entry` behind its own header, which must say the same as the directory. Throws ZipProblem, and
// what `file` throws.
void FindContent(ByteSource& file, ZipEntry& entry);

}  // namespace orvelbox

#endif
