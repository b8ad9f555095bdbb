// The assembly cache pass, written directly for paths that are known in advance.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <bitset>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "bench/device_tree.h"
#include "bench/reference.h"
#include "bench/reference_log.h"
#include "orvel/trace.h"

namespace bench {

namespace {

using Catalogue = std::map<std::string, std::string>;

constexpr std::size_t kBits = 65536;

class Pass {
 public:
  explicit Pass(bool logs) : logs_(logs) {}

  void Run() {
    if (logs_) Enter("int gac(const std::string&)");
    CatalogueDirectory("/usr/share/dotnet.orvel/netcoreapp", core_, 1);
    CatalogueDirectory("/usr/share/dotnet.orvel/framework", framework_, 1);
    CatalogueDirectory("/usr/share/dotnet.orvel/d.pc", framework_, 2);
    if (logs_) LogPrivilege();
    for (int package = 0; package < kCobaPackages; ++package) {
      if (logs_) Debug("cobaCallback", 140, "Path : ", CobaRoot(package).c_str());
      CatalogueDirectory(CobaRoot(package) + "/shared/res", coba_, 1);
    }
    if (logs_) LogSizes();
    CatalogueDirectory(std::string(kPackageRoot) + "/lib", library_, 1);
    JudgeDirectory(kPackageRoot, 10);
    if (logs_) Leave("int gac(const std::string&)");
  }

 private:
  // Calls `file(path, name)` for the files of a directory and its subdirectories. All calls share `path`.
  template <typename File>
  void Walk(std::string path, int depth, const File& file) {
    DIR* const listing = opendir(path.c_str());
    if (listing == nullptr) return;
    path += '/';
    const std::size_t length = path.size();
    std::vector<std::string> subdirectories;
    while (const dirent64* entry = readdir64(listing)) {
      const std::string_view name = entry->d_name;
      if (entry->d_type == DT_REG) {
        file(path, name);
        path.resize(length);
      } else if (entry->d_type == DT_DIR && depth > 1 && name != "." && name != "..") {
        subdirectories.push_back(path + std::string(name));
      }
    }
    for (const std::string& subdirectory : subdirectories) Walk(subdirectory, depth - 1, file);
    closedir(listing);
  }

  void CatalogueDirectory(const std::string& directory, Catalogue& catalogue, int depth) {
    Walk(directory, depth, [&](std::string& path, std::string_view name) {
      path += name;
      known_.set(Bit(name));
      if (logs_) {
        catalogue.emplace_hint(catalogue.begin(), name, path);
      } else {
        paths_.emplace(name, path);
      }
    });
  }

  static std::size_t Bit(std::string_view name) { return std::hash<std::string_view>()(name) % kBits; }

  template <typename Paths>
  const std::string* Find(const Paths& paths) const {
    const auto origin = paths.find(name_);
    return origin == paths.end() ? nullptr : &origin->second;
  }

  const std::string* OriginOf(std::string_view name) {
    if (!known_.test(Bit(name))) return nullptr;
    name_.assign(name);
    if (!logs_) return Find(paths_);
    for (const Catalogue* catalogue : {&core_, &framework_, &coba_, &library_}) {
      if (const std::string* const origin = Find(*catalogue)) return origin;
    }
    return nullptr;
  }

  void JudgeDirectory(const std::string& directory, int depth) {
    Walk(directory, depth, [&](std::string& path, std::string_view name) {
      if (name.size() < 4 || name.substr(name.size() - 4) != ".dll") return;
      if (!logs_ && !IsThere(path.append(name))) return;
      const std::string* const origin = OriginOf(name);
      if (origin == nullptr) return;
      if (logs_ && !IsThere(path.append(name))) return;
      if (logs_) LogFound(*origin, path);
      const bool duplicate =
          *origin != path && origin->find("/d.pc/") == std::string::npos && path.find("/d.pc/") == std::string::npos;
      if (duplicate) Remove(*origin, path);
      if (logs_ && !duplicate) Leave("bool isDuplicatedDll(const std::string&, const std::string&)");
    });
  }

  static bool IsThere(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
  }

  void Remove(const std::string& origin, const std::string& path) {
    if (logs_) LogDuplicate(origin, path);
    std::fprintf(stderr, "### Duplicated DLL found!!! Please remove duplicated dll ### Origin : %s, Duplicated : %s\n",
                 origin.c_str(), path.c_str());
    unlink(path.c_str());
    const int file = open((path + "_deleted").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    Write(file, path + " was deleted because " + origin + " exists\n");
    Write(file, "Remove " + path + " from OPK\n");
    close(file);
    if (logs_) Leave("void removeFileAndLeaveInformationFile(const std::string&, const std::string&)");
  }

  static void Write(int file, const std::string& text) {
    if (write(file, text.data(), text.size()) < 0) std::perror("bench_reference");
  }

  static void LogPrivilege() {
    Enter("bool HasPlatformPrivilege(const std::string&)");
    Enter("bool HasPrivilege(const std::string&, const std::string&)");
    Leave("bool HasPrivilege(const std::string&, const std::string&)");
    Leave("bool HasPlatformPrivilege(const std::string&)");
    Debug("gac", 80, "This package does not have platform privilege. So skip tvappapi path", "");
    Enter("void getPackageByMetadataTag(pkgmgrinfo_app_list_cb, const std::string&)");
  }

  void LogSizes() const {
    Leave("void getPackageByMetadataTag(pkgmgrinfo_app_list_cb, const std::string&)");
    Debug("gac", 84, "coreFX  size = ", std::to_string(core_.size()).c_str());
    Debug("gac", 85, "orvelFX size = ", std::to_string(framework_.size()).c_str());
  }

  static void LogFound(const std::string& origin, const std::string& path) {
    Debug("isExistInList", 20, "Found ", origin.c_str());
    Enter("bool isDuplicatedDll(const std::string&, const std::string&)");
    LogCompared(origin.c_str(), path.c_str());
  }

  static void LogDuplicate(const std::string& origin, const std::string& path) {
    for (int compared = 0; compared < 2; ++compared) {
      Enter("bool isDPCDll(const std::string&)");
      Leave("bool isDPCDll(const std::string&)");
    }
    Error("isDuplicatedDll", 90, "### Duplicated DLL found ###", "");
    Error("isDuplicatedDll", 91, "Origin : ", origin.c_str());
    Error("isDuplicatedDll", 92, "Duplicated : ", path.c_str());
    Leave("bool isDuplicatedDll(const std::string&, const std::string&)");
    Enter("void removeFileAndLeaveInformationFile(const std::string&, const std::string&)");
  }

  bool logs_;
  Catalogue core_, framework_, coba_, library_;
  std::unordered_map<std::string, std::string> paths_;  // used on the floor instead of the four catalogues
  std::bitset<kBits> known_;                            // a filter for the names in all of them
  std::string name_;
};

}  // namespace

void ReferencePass(Reference reference) { Pass(reference == Reference::kLimit).Run(); }

}  // namespace bench
