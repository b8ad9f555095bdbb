// The operations on packages.
#include "orvelbox/operations/operations.h"

#include <map>
#include <stdexcept>

#include "base/affix.h"
#include "orvelbox/desk/with_rollback.h"
#include "orvelbox/package/manifest.h"

namespace orvelbox {
namespace {

void RequireOwnApplications(const host::PackageStore& store, const host::Package& package, const std::string& file) {
  for (const host::Application& application : package.applications) {
    const auto owner = store.FindByApplication(application.id);
    if (!owner || owner->id == package.id) continue;
    throw host::DeviceError(file + ": application id \"" + application.id + "\" belongs to the installed package " +
                            owner->id + "; choose another application id, or uninstall " + owner->id);
  }
}

Effects EffectsOf(const Session& session, const std::function<void(const HookCaller&)>& calls) {
  const Snapshot before = TakeSnapshot(session.device());
  return EffectsSince(session.device(), before, RunHooks(session.settings(), calls));
}

// The hooks of an installation: after a refusal the plug-in is told that everything is taken back.
Effects CallInstallHooks(const Session& session, const std::string& main_hook, const Manifest& manifest) {
  return EffectsOf(session, [&](const HookCaller& call) {
    const int result = call(main_hook, manifest.document.get(), manifest.package.id);
    call(result == -1 ? "UNDO" : "CLEAN", manifest.document.get(), manifest.package.id);
  });
}

// Calls `hooks` for an installed package, with the manifest that it was installed with.
Effects CallHooksFor(const Session& session, const host::Package& package, HookNames hooks) {
  const Manifest manifest = ReadManifest(session.trees().Place(package));
  return EffectsOf(session, [&](const HookCaller& call) {
    for (const char* hook : hooks) call(hook, manifest.document.get(), package.id);
  });
}

}  // namespace

Change Install(const Session& session, const std::filesystem::path& directory) {
  const Manifest manifest = ReadManifest(directory);
  Change change{PlacedAt(manifest.package, session.trees().RootOnDevice(manifest.package.id)), {}, {}};
  const std::string file = (directory / kManifestName).string();
  if (session.OpenStore().Find(change.package.id)) {
    throw host::DeviceError(file + ": package " + change.package.id +
                            " is installed already; use upgrade, or uninstall it");
  }
  RequireOwnApplications(session.OpenStore(), change.package, file);
  session.trees().Add(directory, change.package);
  const auto take_back = [&] { session.trees().TakeBackAddition(change.package); };
  change.effects = WithRollback([&] { return CallInstallHooks(session, "INSTALL", manifest); }, take_back);
  change.taken_back = !change.Done();
  if (change.taken_back) {
    take_back();
  } else {
    session.trees().KeepAddition();
  }
  return change;
}

Change Upgrade(const Session& session, const std::filesystem::path& directory) {
  const Manifest manifest = ReadManifest(directory);
  const std::string file = (directory / kManifestName).string();
  const auto installed = session.OpenStore().Find(manifest.package.id);
  if (!installed) {
    throw host::DeviceError(file + ": package " + manifest.package.id + " is not installed; use install");
  }
  Change change{PlacedAt(manifest.package, installed->root), installed, {}};
  RequireOwnApplications(session.OpenStore(), change.package, file);
  session.trees().Replace(directory, change.package, *installed);
  const auto take_back = [&] { session.trees().RestorePrevious(*installed); };
  change.effects = WithRollback([&] { return CallInstallHooks(session, "UPGRADE", manifest); }, take_back);
  change.taken_back = !change.Done();
  if (change.taken_back) {
    take_back();
  } else {
    session.trees().KeepUpgrade(change.package.id);
  }
  return change;
}

Change Uninstall(const Session& session, const std::string& package_id) {
  Change change{session.Installed(package_id), {}, {}};
  session.trees().BeginRemoval(package_id);
  const auto call_hooks = [&] { return CallHooksFor(session, change.package, {"UNINSTALL", "CLEAN"}); };
  change.effects = WithRollback(call_hooks, [&] { session.trees().TakeBackRemoval(); });
  if (change.Done()) {
    session.trees().Remove(change.package);
  } else {
    session.trees().AbandonRemoval();
  }
  return change;
}

Change CallHooks(const Session& session, HookNames hooks, const std::string& package_id) {
  Change change{session.Installed(package_id), {}, {}};
  change.effects = CallHooksFor(session, change.package, hooks);
  return change;
}

RawEvent ParseRawEvent(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos || colon + 1 == text.size()) {
    throw std::invalid_argument(text + ": no event; write EVENT:PKG, e.g. clean:org.example.app");
  }
  std::string names;
  for (const char* name : kHookNames) {
    if (EqualsIgnoringCase(name, text.substr(0, colon))) return {name, text.substr(colon + 1)};
    names += std::string(names.empty() ? "" : ", ") + name;
  }
  throw std::invalid_argument(text + ": no such event; there are " + names + " (in any case)");
}

Effects CallRawEvents(const Session& session, const std::vector<RawEvent>& events) {
  std::map<std::string, Manifest> manifests;
  for (const RawEvent& event : events) {
    const host::Package package = session.Installed(event.package_id);
    manifests.insert_or_assign(package.id, ReadManifest(session.trees().Place(package)));
  }
  return EffectsOf(session, [&](const HookCaller& call) {
    for (const RawEvent& event : events) call(event.hook, manifests[event.package_id].document.get(), event.package_id);
  });
}

}  // namespace orvelbox
