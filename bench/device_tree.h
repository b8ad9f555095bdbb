// Device trees for the benchmarks: platform assemblies, CoBA packages, the package to install and cache texts, the same
// in every run.
#ifndef BENCH_DEVICE_TREE_H_
#define BENCH_DEVICE_TREE_H_

#include <filesystem>
#include <string>
#include <vector>

namespace bench {

inline constexpr const char* kPackageRoot = "/opt/usr/apps/org.example.bench";
inline constexpr const char* kSharedResources = "/shared/res/";
inline constexpr int kCobaPackages = 5;

// The root directory of CoBA package `number`, from 0.
std::string CobaRoot(int number);

struct TreeShape {
  int platform_assemblies;
  int files;             // of the package, duplicates included
  int assembly_percent;  // percentage of DLLs among the package's files
  int duplicates;
  int files_per_directory;
  int levels;  // nested directories below the package's root
};

// 400 platform assemblies; a package of 300 files, 20 of them duplicates.
TreeShape RealisticShape();
// 2,000 platform assemblies; a package of `files` files nested nine levels.
TreeShape LargeShape(int files, int duplicates);

// Creates the tree below `root`, the "/" of a device.
void MakeTree(const std::filesystem::path& root, const TreeShape& shape);

// Restores what a pass removed from the package, and removes the information files.
void Restore(const std::filesystem::path& root, const TreeShape& shape);

// A cache text of `entries` entries, of which `percent` (at least one) belong to the package, spread evenly.
std::string CacheText(int entries, int percent);

}  // namespace bench

#endif
