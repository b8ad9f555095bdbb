// What a package is checked against: the platform's assemblies and the CoBA packages of a device, a directory, or a
// list of files. Laid out on the desk as the plug-in's own cataloguing expects it; judged in package_checker.
#ifndef ORVEL_ORVELBOX_CHECK_PLATFORM_SET_H_
#define ORVEL_ORVELBOX_CHECK_PLATFORM_SET_H_

#include <filesystem>
#include <map>
#include <string>

#include "platform/host/device.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// A package that stands on the desk and has (or would have) its place on the device.
struct PlacedPackage {
  std::string id;
  std::filesystem::path desk;
  std::string root;  // on the device
  bool only_names = false;
};

struct PlatformSet {
  std::filesystem::path assemblies;  // on the desk, what is kPlatformAssemblies on the device
  bool only_names = false;           // from a list: the files are there without their content
  std::string read_write_root = host::kDefaultReadWriteRoot;
  std::map<std::string, PlacedPackage> coba;  // by id
  std::map<std::string, std::string> roots;   // of installed packages, by id
};

// The set of a device. Throws host::DeviceError.
PlatformSet SetOfDevice(const host::Device& device);

// The set of the directory `platform`, which holds netcoreapp/, framework/, d.pc/ or tvappapi/, or of the list file
// `platform`: absolute paths of the device, one a line, as `find` prints them. What a list names below
// /usr/share/dotnet.orvel are the platform's assemblies, what it names as ROOT/shared/res/NAME are those of a CoBA
// package; other lines do not count. The list is laid out in `scratch`, a directory that does not exist yet. Throws
// host::DeviceError.
PlatformSet SetOfPlatform(const std::filesystem::path& platform, const std::filesystem::path& scratch);

// Does an application of the package serve others as a CoBA component?
bool IsCobaPackage(const host::Package& package);

// Where a package with the id has, or would have, its place on the device.
std::string RootOnDevice(const PlatformSet& set, const std::string& id);

// Throws host::DeviceError unless `platform` holds at least one of the platform's directories.
void RequirePlatform(const std::filesystem::path& platform);

// Copies the platform's directories that `platform` holds to the device. Throws host::DeviceError.
void CopyPlatform(const std::filesystem::path& platform, const host::Device& device);

// Sets the read-write root that the plug-in's functions see while they judge; they log and trace nothing then.
void SetReadWriteRoot(const std::string& root);

}  // namespace orvelbox

#endif
