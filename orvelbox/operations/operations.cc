// The changing commands.
#include "orvelbox/operations/operations.h"

#include <map>
#include <stdexcept>

#include "base/affix.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/with_rollback.h"
#include "orvelbox/operations/effects.h"
#include "orvelbox/operations/report.h"
#include "orvelbox/package/manifest.h"

namespace orvelbox {
namespace {

std::string Named(const host::Package& package) {
  return package.version.empty() ? package.id : package.id + " " + package.version;
}

void RequireOwnApplications(const host::PackageStore& store, const host::Package& package, const std::string& file) {
  for (const host::Application& application : package.applications) {
    const auto owner = store.FindByApplication(application.id);
    if (!owner || owner->id == package.id) continue;
    throw host::DeviceError(file + ": application id \"" + application.id + "\" belongs to the installed package " +
                            owner->id + "; choose another application id, or uninstall " + owner->id);
  }
}

// The hooks of an installation: after a refusal the plug-in is told that everything is taken back.
HookRun CallInstallHooks(const Session& session, const std::string& main_hook, const Manifest& manifest) {
  return RunHooks(session.settings(), [&](const HookCaller& call) {
    const int result = call(main_hook, manifest.document.get(), manifest.package.id);
    call(result == -1 ? "UNDO" : "CLEAN", manifest.document.get(), manifest.package.id);
  });
}

Observation ObserveInstallHooks(const Session& session, const std::string& main_hook, const Manifest& manifest) {
  const Snapshot before = TakeSnapshot(session.device());
  return Observe(session.device(), before, CallInstallHooks(session, main_hook, manifest));
}

void SayHooks(const HookRun& hooks) {
  if (!hooks.results.empty()) Say("    " + DescribeHooks(hooks));
}

void SayDone(const std::string& headline, const Observation& seen, const std::string& root) {
  Say(headline);
  SayHooks(seen.hooks);
  SayAll(DescribeEffects(seen, root));
}

int ComplainOf(const std::string& command, const host::Package& package, const Observation& seen) {
  Complain(package.id + ": " + command + " failed, " + ReasonOfFailure(seen));
  return 1;
}

// For an operation that was taken back: what it had changed is gone, so only the reasons are told.
void SayTakenBack(const std::string& headline, const Observation& seen, const std::string& root) {
  Say(headline);
  SayHooks(seen.hooks);
  SayAll(ExplainDebuggingFailure(seen, root));
}

Observation ObserveHooks(const Session& session, const std::function<void(const HookCaller&)>& calls) {
  const Snapshot before = TakeSnapshot(session.device());
  return Observe(session.device(), before, RunHooks(session.settings(), calls));
}

// Calls `hooks` for an installed package, with the manifest that it was installed with.
Observation ObserveHooks(const Session& session, const host::Package& package, const std::vector<std::string>& hooks) {
  const Manifest manifest = ReadManifest(session.area().Place(package));
  return ObserveHooks(session, [&](const HookCaller& call) {
    for (const std::string& hook : hooks) call(hook, manifest.document.get(), package.id);
  });
}

void SayFailed(const std::string& headline, const Observation& seen, const std::string& root) {
  SayDone(headline, seen, root);
  SayAll(ExplainDebuggingFailure(seen, root));
}

}  // namespace

int Install(const Session& session, const std::filesystem::path& directory) {
  const Manifest manifest = ReadManifest(directory);
  const host::Package package = PlacedAt(manifest.package, session.area().RootOnDevice(manifest.package.id));
  const std::string file = (directory / kManifestName).string();
  if (session.OpenStore().Find(package.id)) {
    throw host::DeviceError(file + ": package " + package.id + " is installed already; use upgrade, or uninstall it");
  }
  RequireOwnApplications(session.OpenStore(), package, file);
  session.area().Add(directory, package);
  const Observation seen = Attempt([&] { return ObserveInstallHooks(session, "INSTALL", manifest); },
                                   [&] { session.area().TakeBackAddition(package); });
  if (seen.hooks.Succeeded()) {
    session.area().KeepAddition();
    SayDone("installed " + Named(package) + " (" + package.root + ")", seen, package.root);
    return 0;
  }
  session.area().TakeBackAddition(package);
  SayTakenBack("not installed: " + Named(package), seen, package.root);
  return ComplainOf("install", package, seen);
}

int Upgrade(const Session& session, const std::filesystem::path& directory) {
  const Manifest manifest = ReadManifest(directory);
  const std::string file = (directory / kManifestName).string();
  const auto installed = session.OpenStore().Find(manifest.package.id);
  if (!installed) {
    throw host::DeviceError(file + ": package " + manifest.package.id + " is not installed; use install");
  }
  const host::Package package = PlacedAt(manifest.package, installed->root);
  RequireOwnApplications(session.OpenStore(), package, file);
  session.area().Replace(directory, package, *installed);
  const Observation seen = Attempt([&] { return ObserveInstallHooks(session, "UPGRADE", manifest); },
                                   [&] { session.area().RestorePrevious(*installed); });
  const std::string versions = Named(*installed) + " to " + package.version;
  if (seen.hooks.Succeeded()) {
    session.area().KeepUpgrade(package.id);
    SayDone("upgraded " + versions + " (" + package.root + ")", seen, package.root);
    return 0;
  }
  session.area().RestorePrevious(*installed);
  SayTakenBack("not upgraded: " + versions + "; the version before is in place again", seen, package.root);
  return ComplainOf("upgrade", package, seen);
}

int Uninstall(const Session& session, const std::string& package_id) {
  const host::Package package = session.Installed(package_id);
  session.area().BeginRemoval(package.id);
  const Observation seen = Attempt(
      [&] {
        return ObserveHooks(session, package, {"UNINSTALL", "CLEAN"});
      },
      [&] { session.area().TakeBackRemoval(); });
  if (!seen.hooks.Succeeded()) {
    session.area().AbandonRemoval();
    SayFailed("not uninstalled: " + Named(package) + "; it stays installed", seen, package.root);
    return ComplainOf("uninstall", package, seen);
  }
  session.area().Remove(package);
  SayDone("uninstalled " + Named(package), seen, package.root);
  return 0;
}

const std::vector<PackageEvent>& PackageEvents() {
  static const std::vector<PackageEvent> events = {
      {"remove",
       "An update of the package was taken back: REMOVED, then CLEAN; the package stays",
       "took back an update of",
       "; the package stays installed",
       {"REMOVED", "CLEAN"}},
      {"recover",
       "An uninstall of the package failed: RECOVERUNINSTALL, then CLEAN; the package stays",
       "recovered",
       " from a failed uninstall; the package stays installed",
       {"RECOVERUNINSTALL", "CLEAN"}},
      {"clean", "Call CLEAN for the package", "cleaned", "", {"CLEAN"}},
      {"cleanup", "Call CLEANUP, which calls CLEAN itself, for the package", "cleaned up", "", {"CLEANUP"}},
      {"undo", "Call UNDO for the package", "told the plug-in to undo", "", {"UNDO"}},
  };
  return events;
}

int RunPackageEvent(const Session& session, const PackageEvent& event, const std::string& package_id) {
  const host::Package package = session.Installed(package_id);
  const Observation seen = ObserveHooks(session, package, event.hooks);
  if (!seen.hooks.Succeeded()) {
    SayFailed(std::string("not done: ") + event.command + " " + Named(package), seen, package.root);
    return ComplainOf(event.command, package, seen);
  }
  SayDone(std::string(event.done) + " " + Named(package) + event.effect, seen, package.root);
  return 0;
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

int RunRawEvents(const Session& session, const std::vector<RawEvent>& events) {
  std::map<std::string, Manifest> manifests;
  for (const RawEvent& event : events) {
    const host::Package package = session.Installed(event.package_id);
    manifests.insert_or_assign(package.id, ReadManifest(session.area().Place(package)));
  }
  const Observation seen = ObserveHooks(session, [&](const HookCaller& call) {
    for (const RawEvent& event : events) call(event.hook, manifests[event.package_id].document.get(), event.package_id);
  });
  SayAll(DescribeHooksByPackage(seen.hooks));
  SayAll(DescribeEffects(seen, ""));
  if (seen.hooks.Succeeded()) return 0;
  const std::size_t uncalled = events.size() - seen.hooks.results.size();
  Complain("events: failed, " + ReasonOfFailure(seen) +
           (uncalled == 0 ? "" : " (" + std::to_string(uncalled) + " of the events were not told to the plug-in)"));
  return 1;
}

}  // namespace orvelbox
