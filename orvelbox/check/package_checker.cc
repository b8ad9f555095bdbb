// The assembly cache pass over a package that is not installed: the same catalogues, filled by the same functions in
// the same order, the same walk, the same policy.
#include "orvelbox/check/package_checker.h"

#include <algorithm>
#include <set>

#include "base/affix.h"
#include "morvath/platform_utils.h"
#include "orvelbox/check/silent_platform.h"
#include "orvelbox/package/manifest.h"
#include "platform/host/files.h"
#include "plugin/assembly_cache.h"
#include "plugin/catalogues.h"
#include "plugin/manifest.h"
#include "util/privilege_checker.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// A larger file is no assembly that anybody would ask the version of.
constexpr std::uintmax_t kLargestAssembly = std::uintmax_t{256} << 20;

bool LooksLikeDll(const fs::path& name) { return EqualsIgnoringCase(name.extension().native(), ".dll"); }

// Every DLL of the package, looked at by the plug-in or not, by its path below the root.
std::set<std::string> DllsIn(const fs::path& directory) {
  std::set<std::string> dlls;
  try {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
      const bool subdirectory = entry.symlink_status().type() == fs::file_type::directory;
      if (subdirectory || !LooksLikeDll(entry.path().filename())) continue;
      dlls.insert(entry.path().lexically_relative(directory).string());
    }
  } catch (const fs::filesystem_error& error) {
    host::ThrowFileError(error.path1().empty() ? directory : error.path1(), "read", error.code().value());
  }
  return dlls;
}

DllCopy FactsOf(const fs::path& file) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  if (error) return {};
  DllCopy copy{size, std::nullopt};
  if (size > kLargestAssembly) return copy;
  try {
    copy.version = ReadAssemblyVersion(host::ReadFile(file));
  } catch (const host::DeviceError&) {
    // The size is known all the same.
  }
  return copy;
}

std::string ReasonToKeep(Exemption exemption) {
  if (exemption == Exemption::kNone) return "";
  if (exemption == Exemption::kSamePath) return "it is the copy that others are compared with";
  return "a DLL on a DPC path is no duplicate";
}

CheckedDll Kept(const std::string& path, const std::string& reason) {
  CheckedDll dll;
  dll.path = path;
  dll.reason = reason;
  return dll;
}

std::string ReasonNotSeen(const std::string& path) {
  if (!endWith(path, ".dll")) return "only names that end in \".dll\" in lower case count";
  return "the plug-in does not look that deep, nor into \".sac_symlink\"";
}

}  // namespace

PackageChecker::PackageChecker(PlatformSet set, std::vector<std::string> privileges)
    : set_(std::move(set)), privileges_(std::move(privileges)) {
  SetReadWriteRoot(set_.read_write_root);
  const std::string desk = set_.assemblies.string() + "/";
  CataloguePlatform(OwnCatalogues(), desk);
  for (Catalogue* table : {&coreFX, &orvelFX}) {
    MoveTo(*table, desk, std::string(host::kPlatformAssemblies) + "/", set_.only_names);
  }
}

// Turns paths of the desk into those of the device, which are what the policy is about.
void PackageChecker::MoveTo(Catalogue& table, const std::string& desk, const std::string& device, bool only_names) {
  for (auto& [name, path] : table) {
    std::string moved = device + path.substr(desk.size());
    if (!only_names) on_desk_[moved] = path;
    path = std::move(moved);
  }
}

// Adds to `table` what `fill` finds on the desk. It fills an empty one first, so that only what is new is moved.
template <typename Fill>
void PackageChecker::AddTo(Catalogue& table, const std::string& desk, const std::string& device, bool only_names,
                           const Fill& fill) {
  Catalogue before;
  before.swap(table);
  fill();
  before.swap(table);
  MoveTo(before, desk, device, only_names);
  for (const auto& [name, path] : before) insertItem(table, name, path);
}

void PackageChecker::CatalogueRest(const fs::path& directory, const CheckedPackage& package, bool coba, bool platform) {
  if (platform) {
    const std::string desk = set_.assemblies.string() + "/";
    AddTo(orvelFX, desk, std::string(host::kPlatformAssemblies) + "/", set_.only_names,
          [&] { CatalogueTvAppApi(OwnCatalogues(), desk); });
  }
  RemoveCoba(package.id, set_);
  if (coba) AddCoba({package.id, directory, package.root}, set_);
  for (const PlacedPackage& other : set_.coba) {
    AddTo(coBA, other.desk.string(), other.root, other.only_names,
          [&] { CatalogueSharedResources(OwnCatalogues(), other.desk); });
  }
  AddTo(appLib, directory.string(), package.root, false, [&] { CatalogueLibrary(OwnCatalogues(), directory); });
}

void PackageChecker::JudgeAll(const fs::path& directory, CheckedPackage& package) {
  std::set<std::string> unseen = DllsIn(directory);
  const std::size_t root_length = directory.string().size() + 1;
  VisitPackage(directory, [&](const ListedFile& file) {
    if (!IsAssemblyName(file.name)) return;
    const std::string on_desk = file.Path();
    const std::string path = on_desk.substr(root_length);
    unseen.erase(path);
    if (!file.regular && !isRealPath(on_desk)) {
      package.dlls.push_back(Kept(path, "a symbolic link is never judged"));
      return;
    }
    const std::string on_device = package.root + "/" + path;
    const Judgement judgement = Foretell(OwnCatalogues(), on_device, std::string(file.name));
    CheckedDll dll = Kept(path, ReasonToKeep(judgement.exemption));
    dll.verdict = judgement.verdict;
    if (judgement.origin != nullptr) dll.origin = *judgement.origin;
    if (dll.IsDuplicate()) AddFacts(directory, dll);
    package.dlls.push_back(std::move(dll));
  });
  for (const std::string& path : unseen) package.dlls.push_back(Kept(path, ReasonNotSeen(path)));
  std::sort(package.dlls.begin(), package.dlls.end(),
            [](const CheckedDll& a, const CheckedDll& b) { return a.path < b.path; });
}

void PackageChecker::AddFacts(const fs::path& directory, CheckedDll& dll) const {
  dll.own = FactsOf(directory / dll.path);
  const auto provided = on_desk_.find(dll.origin);
  if (provided != on_desk_.end()) dll.provided = FactsOf(provided->second);
}

CheckedPackage PackageChecker::Check(const fs::path& package_directory) {
  const Manifest manifest = ReadManifest(package_directory);
  const fs::path directory = fs::canonical(package_directory);
  CheckedPackage package;
  package.id = manifest.package.id;
  package.version = manifest.package.version;
  package.root = RootOnDevice(set_, package.id);
  package.dotnet = isAppDotnetInhouse(manifest.document.get());
  std::set<std::string> privileges(privileges_.begin(), privileges_.end());
  privileges.insert(manifest.package.privileges.begin(), manifest.package.privileges.end());
  package.debugging = privileges.count(kAppDebuggingPrivilege) != 0;
  if (package.dotnet) {
    CatalogueRest(directory, package, IsCobaPackage(manifest.package), privileges.count(kPlatformPrivilege) != 0);
    JudgeAll(directory, package);
  } else {
    for (const std::string& path : DllsIn(directory)) package.dlls.push_back(Kept(path, ""));
  }
  return package;
}

}  // namespace orvelbox
