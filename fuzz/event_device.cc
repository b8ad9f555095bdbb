// Keeps files in memory if possible, and never forces them to disk.
#include "fuzz/event_device.h"

#include <libxml/parser.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "fuzz/memory_directory.h"
#include "platform/host/device.h"
#include "platform/host/fixed_paths.h"
#include "platform/host/fixed_paths_methods.h"
#include "plugin/catalogues.h"
#include "plugin/hooks.h"
#include "tests/doubles/platform.h"
#include "tests/support/uris.h"

#pragma GCC visibility push(default)
extern "C" int fsync(int) { return 0; }
extern "C" void sync() noexcept {}
#pragma GCC visibility pop

namespace fuzz {

namespace fs = std::filesystem;

namespace {

constexpr const char* kAreas[] = {"/usr/share/dotnet.orvel", "/opt/usr"};

// Discards standard error during its lifetime: the plug-in prints messages there.
class DiscardedErrors {
 public:
  DiscardedErrors() : original_(dup(STDERR_FILENO)) {
    std::fflush(stderr);
    if (FILE* nowhere = std::fopen("/dev/null", "we")) {
      dup2(fileno(nowhere), STDERR_FILENO);
      std::fclose(nowhere);
    }
  }
  ~DiscardedErrors() {
    std::fflush(stderr);
    dup2(original_, STDERR_FILENO);
    close(original_);
  }
  DiscardedErrors(const DiscardedErrors&) = delete;
  DiscardedErrors& operator=(const DiscardedErrors&) = delete;

 private:
  int original_;
};

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, FreeDocument>;

std::string TextOf(ModelManifest manifest) {
  const auto application = [](const std::string& type) { return "<ui-application type='" + type + "'/>"; };
  switch (manifest) {
    case ModelManifest::kOther:
      return application("capp");
    case ModelManifest::kSample:
      return application("dotnet-apitest") + application("dotnet-inhouse");
    case ModelManifest::kDotnet:
      return application("dotnet-inhouse");
    default:
      return application("dotnet-inhouse") + "<metadata key='" + support::kCobaKey + "' value='true'/>";
  }
}

Document DocumentOf(ModelManifest manifest) {
  if (manifest == ModelManifest::kNone) return nullptr;
  const std::string text = "<manifest>" + TextOf(manifest) + "</manifest>";
  return Document(xmlReadMemory(text.data(), static_cast<int>(text.size()), "manifest", nullptr, 0));
}

doubles::Package PackageOf(const ModelPackage& model) {
  doubles::Package package = doubles::MakePackage(model.id, model.root);
  if (model.debugged) package.privileges.push_back(support::kDebuggingPrivilege);
  if (model.platform) package.privileges.push_back(support::kPlatformPrivilege);
  if (model.coba) package.applications[0].metadata = {{support::kCobaKey, "true"}};
  return package;
}

std::string ReadAll(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void RemoveFiles() {
  for (const char* area : kAreas) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(area)) {
      if (entry.is_symlink() || !entry.is_directory()) files.push_back(entry.path());
    }
    for (const fs::path& file : files) fs::remove(file);
  }
}

}  // namespace

bool EnterDevice() {
  static bool inside = false;
  if (inside) return true;
  std::string reason;
  const host::FixedPathsMethod method = host::AvailableFixedPathsMethod(&reason);
  if (method == host::FixedPathsMethod::kNone || method == host::FixedPathsMethod::kInPlace) {
    std::fprintf(stderr, "events: %s\n", reason.c_str());
    return false;
  }
  static const MemoryDirectory root;
  for (const char* area : kAreas) fs::create_directories(root.path().string() + area);
  host::EnterMountNamespace(method == host::FixedPathsMethod::kUserNamespace);
  host::MountFixedPaths(root.path());
  inside = true;
  return true;
}

EventDevice::EventDevice(const std::vector<std::string>& directories) {
  RemoveFiles();
  static bool made = false;  // no event creates or removes a directory
  if (!made) {
    for (const std::string& directory : directories) fs::create_directories(directory);
  }
  made = true;
  for (auto* catalogue : {&coreFX, &orvelFX, &coBA, &appLib}) catalogue->clear();
  for (auto* flags : {&cacheStateUninstall, &aotStateUpgrade}) flags->clear();
  doubles::Platform& platform = doubles::Reset();
  platform.keeps_journal = false;
  platform.read_write_root = kReadWriteRoot;
  platform.on_event = [this](const doubles::Event& event) {
    if (event.kind == doubles::Event::Kind::kRestart) ++restarts_;
  };
}

void EventDevice::Put(const std::string& path, const ModelFile& file) const {
  Remove(path);
  if (file.link) {
    fs::create_symlink(file.content, path);
  } else {
    std::ofstream(path, std::ios::binary) << file.content;
  }
}

void EventDevice::Remove(const std::string& path) const { fs::remove(path); }

void EventDevice::Register(const std::vector<ModelPackage>& packages) const {
  doubles::Current().packages.clear();
  for (const ModelPackage& package : packages) {
    if (package.installed) doubles::Current().packages.push_back(PackageOf(package));
  }
}

int EventDevice::Send(ModelEvent event, ModelManifest manifest, const std::string& id) {
  using Hook = int(xmlDocPtr, const char*);
  constexpr Hook* kHooks[] = {PKGMGR_PARSER_PLUGIN_INSTALL,          PKGMGR_PARSER_PLUGIN_UPGRADE,
                              PKGMGR_PARSER_PLUGIN_REMOVED,          PKGMGR_PARSER_PLUGIN_UNINSTALL,
                              PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL, PKGMGR_PARSER_PLUGIN_CLEAN,
                              PKGMGR_PARSER_PLUGIN_CLEANUP,          PKGMGR_PARSER_PLUGIN_UNDO};
  const Document document = DocumentOf(manifest);
  const DiscardedErrors discarded;
  return kHooks[static_cast<std::size_t>(event)](document.get(), id.c_str());
}

std::map<std::string, ModelFile> EventDevice::Files() const {
  std::map<std::string, ModelFile> files;
  for (const char* area : kAreas) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(area)) {
      if (entry.is_symlink()) {
        files[entry.path().string()] = {true, fs::read_symlink(entry.path()).string()};
      } else if (!entry.is_directory()) {
        files[entry.path().string()] = {false, ReadAll(entry.path())};
      }
    }
  }
  return files;
}

}  // namespace fuzz
