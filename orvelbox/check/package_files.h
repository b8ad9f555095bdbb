// The files of a package or a platform as `check` needs them: the listing, and of single DLLs their size and version.
// Where they stand, in a directory or in an archive, stays in here; nothing is unpacked or written.
#ifndef ORVEL_ORVELBOX_CHECK_PACKAGE_FILES_H_
#define ORVEL_ORVELBOX_CHECK_PACKAGE_FILES_H_

#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "orvelbox/assembly/version.h"
#include "orvelbox/check/listing.h"
#include "orvelbox/check/result.h"
#include "orvelbox/package/manifest.h"

namespace orvelbox {

// By itself: files of which nothing but their names is known.
class PackageFiles {
 public:
  explicit PackageFiles(Listing listing) : listing_(std::move(listing)) {}
  virtual ~PackageFiles() = default;

  const Listing& listing() const { return listing_; }
  // What is known of the file at `path` below the root; several threads may ask at a time.
  virtual DllCopy FactsOf(const std::string& /*path*/) const { return {}; }

 private:
  Listing listing_;
};
using Files = std::shared_ptr<const PackageFiles>;

// What stands in the directory `root`; nothing where that is not there. Throws host::DeviceError when a directory
// cannot be read.
Files FilesIn(const std::filesystem::path& root);

struct OpenedPackage {
  Manifest manifest;
  Files files;
};

// Opens the package in the directory or the archive `package`. Throws host::DeviceError when it is none.
OpenedPackage OpenPackage(const std::filesystem::path& package);

}  // namespace orvelbox

#endif
