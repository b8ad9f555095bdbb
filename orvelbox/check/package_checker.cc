// The assembly cache pass over a package that is not installed: the same catalogues, filled by the same functions in
// the same order, the same walk, the same policy, all by the paths that the files have on the device.
#include "orvelbox/check/package_checker.h"

#include <dirent.h>
#include <libxml/parser.h>

#include <algorithm>
#include <set>

#include "base/affix.h"
#include "platform/host/paths.h"
#include "plugin/assembly_cache.h"
#include "plugin/catalogues.h"
#include "plugin/manifest.h"
#include "util/privilege_checker.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

std::string_view ReasonToKeep(Exemption exemption) {
  if (exemption == Exemption::kNone) return "";
  if (exemption == Exemption::kSamePath) return "it is the copy that others are compared with";
  return "a DLL on a DPC path is no duplicate";
}

CheckedDll Kept(const std::string& path, std::string_view reason) {
  CheckedDll dll;
  dll.path = path;
  dll.reason = reason;
  return dll;
}

std::string_view ReasonNotSeen(const std::string& path, unsigned char type) {
  if (type != DT_REG && type != DT_LNK) return "only regular files count";
  if (!IsAssemblyName(path)) return "only names that end in \".dll\" in lower case count";
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

Catalogue ComponentOf(const PlacedPackage& package) {
  OwnedCatalogues found;
  CatalogueSharedResources(found.All(), package.root, WalkOver(package.files->listing(), package.root));
  return found.components;
}

Catalogue LibraryOf(const PlacedPackage& package) {
  OwnedCatalogues found;
  CatalogueLibrary(found.All(), package.root, WalkOver(package.files->listing(), package.root));
  return found.library;
}

// The first of several packages that share a name decides.
Catalogue Merged(std::map<std::string, Catalogue> components) {
  Catalogue all;
  for (auto& [id, component] : components) all.merge(component);
  return all;
}

bool IsBefore(const CheckedDll& a, const CheckedDll& b) { return a.path < b.path; }

// Adds the DLLs that the pass did not come to, and puts all into order.
void AddUnseen(const Listing& listing, CheckedPackage& package) {
  std::sort(package.dlls.begin(), package.dlls.end(), IsBefore);
  if (listing.dlls() == package.dlls.size()) return;
  const std::size_t seen = package.dlls.size();
  listing.ForEachDll([&](const std::string& path, unsigned char type) {
    CheckedDll dll = Kept(path, package.dotnet ? ReasonNotSeen(path, type) : std::string_view());
    const auto end = package.dlls.begin() + static_cast<std::ptrdiff_t>(seen);
    if (!std::binary_search(package.dlls.begin(), end, dll, IsBefore)) package.dlls.push_back(std::move(dll));
  });
  std::sort(package.dlls.begin(), package.dlls.end(), IsBefore);
}

}  // namespace

PackageChecker::PackageChecker(PlatformSet set, std::vector<std::string> privileges)
    : set_(std::move(set)), privileges_(std::move(privileges)) {
  xmlInitParser();  // in this thread, before others read manifests
  SetReadWriteRoot(set_.read_write_root);
  const Walk platform = WalkOver(set_.assemblies->listing(), host::kPlatformAssemblies);
  const std::string root = std::string(host::kPlatformAssemblies) + "/";
  OwnedCatalogues found;
  CataloguePlatform(found.All(), root, platform);
  core_ = found.core;
  framework_ = found.framework;
  CatalogueTvAppApi(found.All(), root, platform);
  framework_with_api_ = std::move(found.framework);
  for (const auto& [id, component] : set_.coba) components_[id] = ComponentOf(component);
  all_components_ = Merged(components_);
}

// What is shared once the package is installed: an earlier version of it shares nothing any more.
Catalogue PackageChecker::ComponentsWith(const PlacedPackage& own, bool coba) const {
  std::map<std::string, Catalogue> components = components_;
  components.erase(own.id);
  if (coba) components[own.id] = ComponentOf(own);
  return Merged(components);
}

void PackageChecker::JudgeDotnet(const PlacedPackage& own, bool coba, bool platform, CheckedPackage& package) const {
  const bool changes_them = coba || components_.count(own.id) != 0;
  const Catalogue components = changes_them ? ComponentsWith(own, coba) : Catalogue();
  const Catalogue library = LibraryOf(own);
  JudgeAll(
      own,
      {&core_, platform ? &framework_with_api_ : &framework_, changes_them ? &components : &all_components_, &library},
      package);
}

void PackageChecker::JudgeAll(const PlacedPackage& own, const CatalogueList& catalogues,
                              CheckedPackage& package) const {
  const auto judge = [&](const ListedFile& file) {
    const std::string on_device = file.Path();
    const std::string path = on_device.substr(package.root.size() + 1);
    if (!file.regular) {
      package.dlls.push_back(Kept(path, "a symbolic link is never judged"));
      return;
    }
    const Judgement judgement = Foretell(catalogues, on_device, std::string(file.name));
    CheckedDll dll = Kept(path, ReasonToKeep(judgement.exemption));
    dll.verdict = judgement.verdict;
    if (judgement.origin != nullptr) dll.origin = *judgement.origin;
    if (dll.IsDuplicate()) {
      dll.own = own.files->FactsOf(path);
      dll.provided = Provided(dll.origin, own);
    }
    package.dlls.push_back(std::move(dll));
  };
  VisitPackage(
      own.root,
      [&](const ListedFile& file) {
        if (IsAssemblyName(file.name)) judge(file);
      },
      WalkOver(own.files->listing(), own.root));
}

// Of the copies that the platform and the CoBA packages provide, each is looked at once.
DllCopy PackageChecker::Provided(const std::string& origin, const PlacedPackage& own) const {
  const auto facts_in = [&](const PackageFiles& files, const std::string& root) {
    return files.FactsOf(origin.substr(root.size() + 1));
  };
  if (host::IsBelow(origin, own.root)) return facts_in(*own.files, own.root);
  const std::lock_guard lock(mutex_);
  const auto known = provided_.find(origin);
  if (known != provided_.end()) return known->second;
  DllCopy facts;
  if (host::IsBelow(origin, host::kPlatformAssemblies)) facts = facts_in(*set_.assemblies, host::kPlatformAssemblies);
  for (const auto& [id, component] : set_.coba) {
    if (host::IsBelow(origin, component.root)) facts = facts_in(*component.files, component.root);
  }
  return provided_.emplace(origin, facts).first->second;
}

CheckedPackage PackageChecker::Check(const fs::path& package_path) const {
  const OpenedPackage opened = OpenPackage(package_path);
  const Manifest& manifest = opened.manifest;
  CheckedPackage package;
  package.id = manifest.package.id;
  package.version = manifest.package.version;
  package.root = RootOnDevice(set_, package.id);
  package.dotnet = DeclaredKind(manifest.document.get()) == ApplicationKind::kDotnet;
  std::set<std::string> privileges(privileges_.begin(), privileges_.end());
  privileges.insert(manifest.package.privileges.begin(), manifest.package.privileges.end());
  package.debugging = privileges.count(kAppDebuggingPrivilege) != 0;
  package.dlls.reserve(opened.files->listing().dlls());
  if (package.dotnet) {
    JudgeDotnet({package.id, package.root, opened.files}, IsCobaPackage(manifest.package),
                privileges.count(kPlatformPrivilege) != 0, package);
  }
  AddUnseen(opened.files->listing(), package);
  return package;
}

}  // namespace orvelbox
