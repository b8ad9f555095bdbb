// Keeps files in memory if possible, and never forces them to disk.
#include "fuzz/event_device.h"

#include <libxml/parser.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <utility>

#include "fuzz/input.h"
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

namespace {

const std::vector<std::string> kAreas = {"/usr/share/dotnet.orvel", "/opt/usr"};

// Discards what is printed through `stderr` during its lifetime: the plug-in's messages. The sanitizers' still appear.
class DiscardedErrors {
 public:
  DiscardedErrors() : original_(std::exchange(stderr, Nowhere())) {}
  ~DiscardedErrors() { stderr = original_; }
  DiscardedErrors(const DiscardedErrors&) = delete;
  DiscardedErrors& operator=(const DiscardedErrors&) = delete;

 private:
  static FILE* Nowhere() {
    static FILE* const nowhere = std::fopen("/dev/null", "we");
    return nowhere;
  }

  FILE* original_;
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

std::string Dump(xmlDoc* document) {
  xmlChar* text = nullptr;
  int size = 0;
  xmlDocDumpMemory(document, &text, &size);
  std::string dump(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
  xmlFree(text);
  return dump;
}

// A manifest, parsed once for all events.
struct Parsed {
  explicit Parsed(ModelManifest manifest) {
    const std::string text = "<manifest>" + TextOf(manifest) + "</manifest>";
    document.reset(xmlReadMemory(text.data(), static_cast<int>(text.size()), "manifest", nullptr, 0));
    dump = Dump(document.get());
  }

  Document document;
  std::string dump;
};

Parsed& ParsedOf(ModelManifest manifest) {
  static Parsed all[] = {Parsed(ModelManifest::kOther), Parsed(ModelManifest::kSample), Parsed(ModelManifest::kDotnet),
                         Parsed(ModelManifest::kDotnetCoba)};
  return all[static_cast<std::size_t>(manifest) - 1];
}

doubles::Package PackageOf(const ModelPackage& model) {
  doubles::Package package = doubles::MakePackage(model.id, model.root);
  if (model.debugged) package.privileges.push_back(support::kDebuggingPrivilege);
  if (model.platform) package.privileges.push_back(support::kPlatformPrivilege);
  if (model.coba) package.applications[0].metadata = {{support::kCobaKey, "true"}};
  return package;
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
  for (const std::string& area : kAreas) std::filesystem::create_directories(root.path().string() + area);
  host::EnterMountNamespace(method == host::FixedPathsMethod::kUserNamespace);
  host::MountFixedPaths(root.path());
  inside = true;
  return true;
}

// The tree stays from one device to the next, so that its directories need not be opened again.
EventDevice::EventDevice(const std::vector<std::string>& directories) {
  static DeviceTree tree(kAreas, directories);
  tree_ = &tree;
  doubles::Platform& platform = doubles::Reset();
  platform.keeps_journal = false;
  platform.read_write_root = kReadWriteRoot;
  platform.on_event = [this](const doubles::Event& event) {
    if (event.kind == doubles::Event::Kind::kRestart) ++restarts_;
  };
}

// What one input allocates is freed with it: otherwise libFuzzer would take each of them for a leak, and give up
// looking for leaks.
EventDevice::~EventDevice() {
  tree_->Clear();
  for (auto* catalogue : {&coreFX, &orvelFX, &coBA, &appLib}) catalogue->clear();
  for (auto* flags : {&cacheStateUninstall, &aotStateUpgrade}) flags->clear();
  doubles::Reset();
}

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
  const auto call = [&](xmlDoc* document) {
    const DiscardedErrors discarded;
    return kHooks[static_cast<std::size_t>(event)](document, id.c_str());
  };
  if (manifest == ModelManifest::kNone) return call(nullptr);
  Parsed& parsed = ParsedOf(manifest);
  const int result = call(parsed.document.get());
  Require(Dump(parsed.document.get()) == parsed.dump, "an event leaves the manifest as it is");
  return result;
}

}  // namespace fuzz
