// Device trees for measuring: platform assemblies, CoBA packages, the package to install and cache texts, the same ones
// every time. What is measured on them is in the programs.
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
  int files;             // of the package, the duplicates among them
  int assembly_percent;  // how many of the package's files are DLLs
  int duplicates;
  int files_per_directory;
  int levels;  // of directories below the package's root
};

// 400 platform assemblies; a package of 300 files, 20 of them duplicates.
TreeShape RealisticShape();
// 2,000 platform assemblies; a package of `files` files nested nine levels.
TreeShape LargeShape(int files, int duplicates);

// Makes the tree below `root`, which stands for the "/" of a device.
void MakeTree(const std::filesystem::path& root, const TreeShape& shape);

// Puts back what a pass removed from the package, and removes the information files.
void Restore(const std::filesystem::path& root, const TreeShape& shape);

// A cache text of `entries` entries, `percent` of them (at least one) those of the package, spread evenly.
std::string CacheText(int entries, int percent);

}  // namespace bench

#endif
