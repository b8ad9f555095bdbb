// The assembly cache pass over a package that is not installed: the same catalogues, filled by the same functions in
// the same order, the same walk, the same policy.
#include "orvelbox/check/package_checker.h"

#include <libxml/parser.h>

#include <algorithm>
#include <set>

#include "base/affix.h"
#include "morvath/platform_utils.h"
#include "orvelbox/check/platform_set.h"
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
  host::WithFileErrors(directory, "read", [&] {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
      const bool subdirectory = entry.symlink_status().type() == fs::file_type::directory;
      if (subdirectory || !LooksLikeDll(entry.path().filename())) continue;
      dlls.insert(entry.path().lexically_relative(directory).string());
    }
  });
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

// Catalogues for the plug-in's functions to fill.
struct OwnedCatalogues {
  Catalogues All() { return {core, framework, components, library}; }

  Catalogue core;
  Catalogue framework;
  Catalogue components;
  Catalogue library;
};

// Turns paths of the desk into those of the device, which are what the policy is about.
Catalogue MovedToDevice(const Catalogue& on_desk, const std::string& desk, const std::string& device,
                        std::map<std::string, std::string>& places) {
  Catalogue moved;
  for (const auto& [name, path] : on_desk) {
    const std::string& on_device = moved[name] = device + path.substr(desk.size());
    places[on_device] = path;
  }
  return moved;
}

Catalogue ComponentOf(const PlacedPackage& package, std::map<std::string, std::string>& places) {
  OwnedCatalogues found;
  CatalogueSharedResources(found.All(), package.desk);
  return MovedToDevice(found.components, package.desk.string(), package.root, places);
}

}  // namespace

PackageChecker::PackageChecker(PlatformSet set, std::vector<std::string> privileges)
    : set_(std::move(set)), privileges_(std::move(privileges)) {
  xmlInitParser();  // in this thread, before others read manifests
  SetReadWriteRoot(set_.read_write_root);
  const std::string desk = set_.assemblies.string() + "/";
  const std::string device = std::string(host::kPlatformAssemblies) + "/";
  Places unread;  // from a list come names without files
  Places& places = set_.only_names ? unread : places_;
  OwnedCatalogues found;
  CataloguePlatform(found.All(), desk);
  core_ = MovedToDevice(found.core, desk, device, places);
  framework_ = MovedToDevice(found.framework, desk, device, places);
  OwnedCatalogues api;
  CatalogueTvAppApi(api.All(), desk);
  framework_with_api_ = framework_;
  framework_with_api_.merge(MovedToDevice(api.framework, desk, device, places));
  for (const auto& [id, component] : set_.coba) {
    components_[id] = ComponentOf(component, component.only_names ? unread : places_);
  }
}

// What is shared once the package is there: an earlier version of it shares nothing any more.
Catalogue PackageChecker::ComponentsBeside(const PlacedPackage& own, bool coba, Places& places) const {
  std::map<std::string, Catalogue> components = components_;
  components.erase(own.id);
  if (coba) components[own.id] = ComponentOf(own, places);
  Catalogue all;
  for (auto& [id, component] : components) all.merge(component);
  return all;
}

void PackageChecker::JudgeDotnet(const fs::path& directory, const Manifest& manifest, bool platform,
                                 CheckedPackage& package) const {
  Places places;
  const PlacedPackage own{package.id, directory, package.root};
  const Catalogue components = ComponentsBeside(own, IsCobaPackage(manifest.package), places);
  OwnedCatalogues found;
  CatalogueLibrary(found.All(), directory);
  const Catalogue library = MovedToDevice(found.library, directory.string(), package.root, places);
  JudgeAll(directory, {&core_, platform ? &framework_with_api_ : &framework_, &components, &library}, places, package);
}

void PackageChecker::JudgeAll(const fs::path& directory, const CatalogueList& catalogues, const Places& places,
                              CheckedPackage& package) const {
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
    const Judgement judgement = Foretell(catalogues, on_device, std::string(file.name));
    CheckedDll dll = Kept(path, ReasonToKeep(judgement.exemption));
    dll.verdict = judgement.verdict;
    if (judgement.origin != nullptr) dll.origin = *judgement.origin;
    if (dll.IsDuplicate()) AddFacts(directory, places, dll);
    package.dlls.push_back(std::move(dll));
  });
  for (const std::string& path : unseen) package.dlls.push_back(Kept(path, ReasonNotSeen(path)));
  std::sort(package.dlls.begin(), package.dlls.end(),
            [](const CheckedDll& a, const CheckedDll& b) { return a.path < b.path; });
}

void PackageChecker::AddFacts(const fs::path& directory, const Places& places, CheckedDll& dll) const {
  dll.own = FactsOf(directory / dll.path);
  for (const Places* known : {&places, &places_}) {
    const auto provided = known->find(dll.origin);
    if (provided == known->end()) continue;
    dll.provided = FactsOf(provided->second);
    return;
  }
}

CheckedPackage PackageChecker::Check(const fs::path& package_directory) const {
  const Manifest manifest = ReadManifest(package_directory);
  const fs::path directory = fs::canonical(package_directory);
  CheckedPackage package;
  package.id = manifest.package.id;
  package.version = manifest.package.version;
  package.root = RootOnDevice(set_, package.id);
  package.dotnet = DeclaredKind(manifest.document.get()) == ApplicationKind::kDotnet;
  std::set<std::string> privileges(privileges_.begin(), privileges_.end());
  privileges.insert(manifest.package.privileges.begin(), manifest.package.privileges.end());
  package.debugging = privileges.count(kAppDebuggingPrivilege) != 0;
  if (package.dotnet) {
    JudgeDotnet(directory, manifest, privileges.count(kPlatformPrivilege) != 0, package);
  } else {
    for (const std::string& path : DllsIn(directory)) package.dlls.push_back(Kept(path, ""));
  }
  return package;
}

}  // namespace orvelbox
