// The operations on packages.
#include "orvelbox/operations/operations.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <map>
#include <stdexcept>

#include "base/affix.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/package/manifest.h"
#include "platform/host/files.h"

namespace orvelbox {
namespace {

UniqueFd OpenLockFile(const host::Device& device) {
  UniqueFd file(open(device.LockFile().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
  if (!file) host::ThrowFileError(device.LockFile(), "open", errno);
  return file;
}

// The holder's process from the lock file, as " (process N)"; empty when the file has no valid id.
std::string Holder(int descriptor) {
  std::array<char, 24> text{};
  const ssize_t length = pread(descriptor, text.data(), text.size() - 1, 0);
  const std::string digits(text.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) return "";
  return " (process " + digits + ")";
}

// On a full disk the holder's id cannot be written; the lock still works.
void NameHolder(int descriptor) {
  const std::string digits = std::to_string(getpid());
  [[maybe_unused]] const bool named =
      ftruncate(descriptor, 0) == 0 && pwrite(descriptor, digits.data(), digits.size(), 0) >= 0;
}

// Locks the device until the descriptor is closed.
UniqueFd Lock(const host::Device& device) {
  UniqueFd file = OpenLockFile(device);
  if (flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
    NameHolder(file.get());
    return file;
  }
  if (errno != EWOULDBLOCK) host::ThrowFileError(device.LockFile(), "lock", errno);
  throw host::DeviceError(device.directory.string() + ": in use by another orvelbox" + Holder(file.get()) +
                          "; wait for it, or use another device with --device");
}

void RequireOwnApplications(const host::PackageStore& store, const host::Package& package, const std::string& file) {
  for (const host::Application& application : package.applications) {
    const auto owner = store.FindByApplication(application.id);
    if (!owner || owner->id == package.id) continue;
    throw host::DeviceError(file + ": application id \"" + application.id + "\" belongs to the installed package " +
                            owner->id + "; choose another application id, or uninstall " + owner->id);
  }
}

// Runs the hooks of an installation, then keeps or undoes it. When the plug-in rejects it, calls UNDO.
void CallInstallHooks(const Session& session, const std::string& main_hook, const Manifest& manifest,
                      const std::function<void()>& keep, const std::function<void()>& take_back, Change& change) {
  const auto call_hooks = [&](const HookCaller& call) {
    const int result = call(main_hook, manifest.document.get(), manifest.package.id);
    call(result == -1 ? "UNDO" : "CLEAN", manifest.document.get(), manifest.package.id);
  };
  change.effects = WithRollback([&] { return EffectsOf(session.settings(), call_hooks); }, take_back);
  change.undone = !change.Done();
  if (change.undone) {
    take_back();
  } else {
    keep();
  }
}

// Calls `hooks` for an installed package, with the manifest from its installation.
Effects CallHooksFor(const Session& session, const host::Package& package, HookNames hooks) {
  const Manifest manifest = ReadManifest(session.trees().Place(package));
  return EffectsOf(session.settings(), [&](const HookCaller& call) {
    for (const char* hook : hooks) call(hook, manifest.document.get(), package.id);
  });
}

}  // namespace

Session::Session(HookSettings settings)
    : settings_(std::move(settings)),
      lock_(Lock(settings_.device)),
      trees_(settings_.device, host::ReadConfig(settings_.device)) {
  OpenStore();
  mended_ = trees_.Mend();
}

host::PackageStore Session::OpenStore() const {
  return host::PackageStore(device().Database(), host::PackageStore::Mode::kReadWrite);
}

host::Package Session::Installed(const std::string& package_id) const { return FindInstalled(OpenStore(), package_id); }

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
  CallInstallHooks(
      session, "INSTALL", manifest, [&] { session.trees().KeepAddition(); },
      [&] { session.trees().UndoAddition(change.package); }, change);
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
  CallInstallHooks(
      session, "UPGRADE", manifest, [&] { session.trees().KeepUpgrade(change.package.id); },
      [&] { session.trees().RestorePrevious(*installed); }, change);
  return change;
}

Change Uninstall(const Session& session, const std::string& package_id) {
  Change change{session.Installed(package_id), {}, {}};
  session.trees().BeginRemoval(package_id);
  const auto call_hooks = [&] { return CallHooksFor(session, change.package, {"UNINSTALL", "CLEAN"}); };
  change.effects = WithRollback(call_hooks, [&] { session.trees().UndoRemoval(); });
  change.undone = !change.Done();
  if (change.undone) {
    session.trees().UndoRemoval();
  } else {
    session.trees().Remove(change.package);
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
  return EffectsOf(session.settings(), [&](const HookCaller& call) {
    for (const RawEvent& event : events) call(event.hook, manifests[event.package_id].document.get(), event.package_id);
  });
}

}  // namespace orvelbox
