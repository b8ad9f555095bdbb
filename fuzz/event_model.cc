// The rules of the model, each as short as possible.
#include "fuzz/event_model.h"

#include "tests/support/device_root.h"
#include "tests/support/plain_cache_edit.h"
#include "tests/support/removal_texts.h"

namespace fuzz {

namespace {

const std::string kPlatform = "/usr/share/dotnet.orvel/";

bool EndsIn(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool Holds(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

std::vector<std::string> EventModel::NamesIn(const std::string& directory) const {
  std::vector<std::string> names;
  for (auto at = files.lower_bound(directory); at != files.end() && at->first.rfind(directory, 0) == 0; ++at) {
    if (at->first.find('/', directory.size()) == std::string::npos) names.push_back(at->first.substr(directory.size()));
  }
  return names;
}

const ModelPackage* EventModel::Find(const std::string& id) const {
  for (const ModelPackage& package : packages) {
    if (package.installed && package.id == id) return &package;
  }
  return nullptr;
}

std::string EventModel::RootOf(const std::string& id) const {
  const ModelPackage* package = Find(id);
  return package == nullptr ? "" : package->root;
}

bool EventModel::PassesGate(ModelManifest manifest) {
  if (manifest == ModelManifest::kNone) return false;
  if (manifest == ModelManifest::kDotnet || manifest == ModelManifest::kDotnetCoba) memory_.seen_dotnet = true;
  return memory_.seen_dotnet;
}

int EventModel::Send(ModelEvent event, ModelManifest manifest, const std::string& id) {
  switch (event) {
    case ModelEvent::kUpgrade:
    case ModelEvent::kRemoved:
      upgraded_.insert(id);
      return Install(manifest, id);
    case ModelEvent::kInstall:
      return Install(manifest, id);
    case ModelEvent::kUninstall:
      if (!PassesGate(manifest)) return 0;
      uninstalled_.insert(id);
      if (Remove(id)) ++restarts;
      return 0;
    case ModelEvent::kRecoverUninstall:
      if (Remove(id)) ++restarts;
      return 0;
    case ModelEvent::kCleanup:
      if (RootOf(id).empty()) return 0;
      upgraded_.insert(id);
      return Clean(manifest, id);
    case ModelEvent::kClean:
      return Clean(manifest, id);
    default:
      PassesGate(manifest);
      return 0;
  }
}

int EventModel::Install(ModelManifest manifest, const std::string& id) {
  if (!PassesGate(manifest)) return 0;
  const int result = Pass(id);
  const ModelPackage* package = Find(id);
  return result < 0 && package != nullptr && package->debugged ? -1 : 0;
}

int EventModel::Clean(ModelManifest manifest, const std::string& id) {
  if (!PassesGate(manifest) || uninstalled_.count(id) != 0) return 0;
  if (manifest == ModelManifest::kDotnetCoba) {
    Add(id);
    ++restarts;
  } else if (upgraded_.count(id) != 0 && Remove(id)) {
    ++restarts;
  }
  return 0;
}

void EventModel::TakeUp(Catalogue& catalogue, const std::string& directory) {
  for (const std::string& name : NamesIn(directory)) catalogue.emplace(name, directory + name);
}

int EventModel::Pass(const std::string& id) {
  if (id == memory_.last_pass) return 0;
  memory_.last_pass = id;
  const ModelPackage* package = Find(id);
  TakeUp(catalogues_[0], kPlatform + "netcoreapp/");
  for (const char* directory : {"framework/", "d.pc/", "d.pc/s/"}) TakeUp(catalogues_[1], kPlatform + directory);
  if (package != nullptr && package->platform) TakeUp(catalogues_[1], kPlatform + "tvappapi/");
  for (const ModelPackage& other : packages) {
    if (other.installed && other.coba) TakeUp(catalogues_[2], other.root + "/shared/res/");
  }
  if (package == nullptr) return -1;
  TakeUp(catalogues_[3], package->root + "/lib/");
  return RemoveDuplicates(package->root);
}

int EventModel::RemoveDuplicates(const std::string& root) {
  int result = 0;
  std::vector<std::string> paths;
  for (const auto& [path, file] : files) {
    if (path.rfind(root + "/", 0) == 0 && EndsIn(path, ".dll") && !file.link && !Holds(path, ".sac_symlink/")) {
      paths.push_back(path);
    }
  }
  for (const std::string& path : paths) {
    const std::string* origin = nullptr;
    for (const Catalogue& catalogue : catalogues_) {
      const auto entry = catalogue.find(NameOf(path));
      if (entry != catalogue.end() && origin == nullptr) origin = &entry->second;
    }
    if (origin == nullptr || *origin == path || Holds(*origin, "/d.pc/") || Holds(path, "/d.pc/")) continue;
    result = -1;
    if (Holds(*origin, kReadWriteRoot)) continue;
    files.erase(path);
    files[path + "_deleted"] = {false, support::InformationText(*origin, path)};
  }
  return result;
}

bool EventModel::RemoveFrom(const char* file, const std::string& root) {
  const auto cache = files.find(file);
  if (cache == files.end()) return false;
  const support::PlainEdit edit = support::PlainErase(cache->second.content, root);
  if (edit.erased.empty()) return false;
  if (!edit.text.empty()) cache->second = {false, edit.text};
  return true;
}

bool EventModel::Remove(const std::string& id) {
  const std::string root = RootOf(id);
  if (root.empty()) return false;
  const bool from_tpa = RemoveFrom(support::kTpaFile, root);
  const bool from_coba = RemoveFrom(support::kCobaFile, root);
  return from_tpa || from_coba;
}

void EventModel::AddTo(const char* file, const std::string& root, const std::string& entries) {
  const auto cache = files.find(file);
  if (cache == files.end() || entries.empty()) return;
  const std::string text = support::PlainErase(cache->second.content, root).text;
  if (text.empty()) return;
  cache->second = {false, support::PlainAppend(text, entries)};
}

void EventModel::Add(const std::string& id) {
  const std::string root = RootOf(id);
  if (root.empty()) return;
  const std::string resources = root + "/shared/res/";
  std::string assemblies;
  for (const std::string& name : NamesIn(resources)) {
    if (!EndsIn(name, ".dll") || Holds(name, ":") || Holds(name, "[")) continue;
    assemblies.append(assemblies.empty() ? "" : ":").append(resources).append(name);
  }
  AddTo(support::kTpaFile, root, assemblies);
  AddTo(support::kCobaFile, root, resources);
}

}  // namespace fuzz
