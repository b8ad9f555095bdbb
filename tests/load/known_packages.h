// The packages of the load tests: every file of every version is known, and what an install makes of it.
#ifndef TESTS_LOAD_KNOWN_PACKAGES_H_
#define TESTS_LOAD_KNOWN_PACKAGES_H_

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace load {

using Files = std::map<std::string, std::string>;  // relative path to content

inline constexpr const char* kPlatformDll = "netcoreapp/Twice.dll";

struct KnownVersion {
  std::string id;
  std::string version;
  std::string directory;
  std::string archive;
  Files installed;                       // its tree after an undisturbed install
  std::vector<std::string> tpa_entries;  // in the cache files, sorted
  std::vector<std::string> coba_entries;
};

// The versions by id and version.
using KnownPackages = std::map<std::string, std::map<std::string, KnownVersion>>;

// Creates four packages of three versions each in `directory`, as directories and archives. Two of them share
// assemblies, all contain a copy of kPlatformDll.
KnownPackages MakeKnownPackages(const std::filesystem::path& directory);

// The path on the device of the tree of a package.
std::string RootOf(const std::string& id);

// The paths in the tree of the DLL that an install removes and of its information file. When the disk is full or
// permissions are missing, an install may leave the first or omit the second.
inline constexpr const char* kDuplicate = "bin/Twice.dll";
inline constexpr const char* kInformation = "bin/Twice.dll_deleted";

}  // namespace load

#endif
