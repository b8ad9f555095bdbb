// A small launcher tool: shows what the plug-in's library knows about an installed package, and about a cache file.
#include <morvath/assembly_files.h>
#include <morvath/destination_paths.h>
#include <morvath/install_location.h>
#include <morvath/metadata_utils.h>
#include <morvath/package_queries.h>
#include <morvath/platform_utils.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <type_traits>

namespace {

enum ExitStatus { kFine = 0, kCrashed = 1, kCannotTell = 2 };

struct DestroyRecord {
  void operator()(pkgmgrinfo_pkginfo_h record) const { pkgmgrinfo_pkginfo_destroy_pkginfo(record); }
};
using PackageRecord = std::unique_ptr<std::remove_pointer_t<pkgmgrinfo_pkginfo_h>, DestroyRecord>;

// The library creates the record; the tool destroys it.
PackageRecord FindPackage(const std::string& package) {
  pkgmgrinfo_pkginfo_h record = nullptr;
  return PackageRecord(pkgmgrGetPkgInfo(package, &record) == 0 ? record : nullptr);
}

// Does the package's main application have metadata `key` with a value that `matcher` accepts?
bool HasMetadata(const std::string& package, const std::string& key, bool (*matcher)(Metadata*)) {
  std::string value;
  if (getMetadataValue(package, key, value) != 0) return false;
  Metadata metadata{key.c_str(), value.c_str()};
  return matcher(&metadata);
}

// The tool decides which kind of content a package has, not the library.
std::unique_ptr<AotPathManager> PathManagerOf(const std::string& package) {
  if (HasMetadata(package, MetadataKey::dpcType, isDpcKey)) return std::make_unique<DpcPath>();
  if (HasMetadata(package, MetadataKey::coBA, isCobaKey)) return std::make_unique<CoBAComponentPath>();
  return std::make_unique<AppApiPath>();
}

const char* YesOrNo(bool answer) { return answer ? "yes" : "no"; }

ExitStatus TellOfPackage(const std::string& package) {
  if (!FindPackage(package)) {
    std::cerr << "launcher_tool: " << package << ": no such package; name one that is installed\n";
    return kCannotTell;
  }
  const bool read_write = isRWInstalledApp(package);
  const bool skip_aot = IsNeedToSkipAOT(package);  // may print a line on standard output
  const std::string output = AotDestinationPathGetter(PathManagerOf(package).get());
  std::cout << "installed read-write: " << YesOrNo(read_write) << "\n";
  std::cout << "skip ahead-of-time compilation: " << YesOrNo(skip_aot) << "\n";
  std::cout << "output below the package root: " << output << "\n";
  return kFine;
}

ExitStatus TellOfCacheFile(const std::string& file) {
  if (access(file.c_str(), R_OK) != 0) {
    std::cerr << "launcher_tool: " << file << ": " << std::strerror(errno) << "; name a readable cache file\n";
    return kCannotTell;
  }
  const bool crashed = isCrashed(readFileToString(file));
  std::cout << "crashed: " << YesOrNo(crashed) << "\n";
  return crashed ? kCrashed : kFine;
}

}  // namespace

int main(int count, char** arguments) {
  const std::string question = count == 3 ? arguments[1] : "";
  if (question == "package") return TellOfPackage(arguments[2]);
  if (question == "cache") return TellOfCacheFile(arguments[2]);
  std::cerr << "usage: launcher_tool package ID | launcher_tool cache FILE\n";
  return kCannotTell;
}
