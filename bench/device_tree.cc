// Device trees for the benchmarks.
#include "bench/device_tree.h"

#include <algorithm>
#include <fstream>
#include <random>

namespace bench {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kSeed = 20261121;

struct PlatformDirectory {
  const char* path;
  int percent;  // share of the platform's assemblies
};
constexpr PlatformDirectory kPlatform[] = {{"netcoreapp/", 42}, {"framework/", 46}, {"d.pc/", 2},
                                           {"d.pc/one/", 2},    {"d.pc/two/", 2},   {"tvappapi/", 6}};

std::string Numbered(const std::string& front, int number, const std::string& end) {
  const std::string digits = std::to_string(number);
  return front + std::string(6 - std::min<std::size_t>(6, digits.size()), '0') + digits + end;
}

std::string PlatformName(int number) { return Numbered("Orvel.Platform.Assembly", number, ".dll"); }

// Files of the same name have the same content, for tools that compare contents.
void WriteFile(const fs::path& path) { std::ofstream(path) << path.filename().string(); }

fs::path Below(const fs::path& root, const std::string& device_path) { return root / device_path.substr(1); }

void MakePlatform(const fs::path& root, int assemblies) {
  int number = 0;
  for (const PlatformDirectory& directory : kPlatform) {
    const fs::path path = Below(root, std::string("/usr/share/dotnet.orvel/") + directory.path);
    fs::create_directories(path);
    for (int left = assemblies * directory.percent / 100; left > 0; --left) WriteFile(path / PlatformName(number++));
  }
}

void MakeCobaPackages(const fs::path& root) {
  for (int package = 0; package < kCobaPackages; ++package) {
    const fs::path path = Below(root, CobaRoot(package) + kSharedResources);
    fs::create_directories(path);
    for (int file = 0; file < 4; ++file) {
      WriteFile(path / Numbered("Orvel.Component" + std::to_string(package) + ".", file, ".dll"));
    }
  }
}

// The package's directories, without a trailing "/": its root, lib, and others nested at random.
std::vector<std::string> Directories(const TreeShape& shape) {
  struct Directory {
    std::string path;
    int level;
  };
  std::mt19937 random(kSeed);
  std::vector<Directory> directories = {{kPackageRoot, 0}, {std::string(kPackageRoot) + "/lib", 1}};
  const int count = std::max(4, shape.files / shape.files_per_directory);
  while (static_cast<int>(directories.size()) < count) {
    const Directory& parent = directories[random() % directories.size()];
    if (parent.level >= shape.levels) continue;
    const std::string name = Numbered("dir", static_cast<int>(directories.size()), "");
    directories.push_back({parent.path + "/" + name, parent.level + 1});
  }
  std::vector<std::string> paths;
  paths.reserve(directories.size());
  for (const Directory& directory : directories) paths.push_back(directory.path);
  return paths;
}

// The paths of the package's duplicates: names of platform assemblies that the catalogues of other packages do not
// have.
std::vector<std::string> Duplicates(const TreeShape& shape, const std::vector<std::string>& directories) {
  std::vector<std::string> paths;
  const int catalogued = shape.platform_assemblies * 88 / 100;
  for (int file = 0; file < shape.duplicates; ++file) {
    const std::string& directory = directories[static_cast<std::size_t>(file) * 7 % directories.size()];
    paths.push_back(directory + "/" + PlatformName(file * (catalogued / shape.duplicates)));
  }
  return paths;
}

void MakePackage(const fs::path& root, const TreeShape& shape) {
  const std::vector<std::string> directories = Directories(shape);
  for (const std::string& directory : directories) fs::create_directories(Below(root, directory));
  for (int file = 0; file < shape.files - shape.duplicates; ++file) {
    const bool assembly = file * 37 % 100 < shape.assembly_percent;
    const std::string name = Numbered("Org.Example.Module", file, assembly ? ".dll" : ".json");
    WriteFile(Below(root, directories[static_cast<std::size_t>(file) % directories.size()]) / name);
  }
  for (const std::string& path : Duplicates(shape, directories)) WriteFile(Below(root, path));
}

}  // namespace

std::string CobaRoot(int number) { return "/opt/usr/apps/org.example.coba" + std::to_string(number); }

TreeShape RealisticShape() { return {400, 300, 40, 20, 20, 5}; }

TreeShape LargeShape(int files, int duplicates) { return {2000, files, 50, duplicates, 20, 9}; }

void MakeTree(const fs::path& root, const TreeShape& shape) {
  MakePlatform(root, shape.platform_assemblies);
  MakeCobaPackages(root);
  MakePackage(root, shape);
  fs::create_directories(Below(root, "/opt/usr/home/owner/share/dotnet"));
}

void Restore(const fs::path& root, const TreeShape& shape) {
  for (const std::string& path : Duplicates(shape, Directories(shape))) {
    WriteFile(Below(root, path));
    fs::remove(Below(root, path + "_deleted"));
  }
}

std::string CacheText(int entries, int percent) {
  const int own = std::max(1, entries * percent / 100);
  std::string text = "[START]";
  for (int entry = 0; entry < entries; ++entry) {
    const bool is_own = (entry + 1) * own / entries > entry * own / entries;
    const std::string package = is_own ? kPackageRoot : Numbered("/opt/usr/apps/org.example.other", entry % 97, "");
    text += (entry > 0 ? ":" : "") + package + kSharedResources + Numbered("Assembly", entry, ".dll");
  }
  return text + "[END]";
}

}  // namespace bench
