// Choosing a device, changing it, and printing the result.
#include "orvelbox/commands/shared.h"

#include <cstdlib>
#include <stdexcept>

#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/operations/report.h"
#include "orvelbox/package/source.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

bool IsSet(const char* value) { return value != nullptr && *value != '\0'; }

// The plug-in that belongs to this program: when installed, in the library directory; when built, in the directory
// plugin/ beside this program's directory.
fs::path OwnPlugin() {
  const fs::path programs = fs::read_symlink("/proc/self/exe").parent_path();
  const fs::path installed = (programs / ORVELBOX_INSTALLED_PLUGIN).lexically_normal();
  return fs::exists(installed) ? installed : programs.parent_path() / "plugin" / "libmorvath.so";
}

}  // namespace

fs::path ChooseDevice(const std::string& option, const Environment& environment) {
  if (!option.empty()) return option;
  if (const char* device = environment(host::kDeviceVariable); IsSet(device)) return device;
  // A relative XDG directory is ignored.
  if (const char* state = environment("XDG_STATE_HOME"); IsSet(state) && *state == '/') {
    return fs::path(state) / "orvelbox/device";
  }
  if (const char* home = environment("HOME"); IsSet(home)) return fs::path(home) / ".local/state/orvelbox/device";
  throw host::DeviceError("no device named; name its directory with --device");
}

fs::path ChooseDevice(const GlobalOptions& global) {
  return ChooseDevice(global.device, [](const char* name) { return std::getenv(name); });
}

host::Device OpenChosenDevice(const GlobalOptions& global) { return host::OpenDevice(ChooseDevice(global)); }

host::PackageStore ReadStore(const host::Device& device) {
  return host::PackageStore(device.Database(), host::PackageStore::Mode::kReadOnly);
}

HookSettings HookSettingsFor(const GlobalOptions& global, const host::Device& device) {
  HookSettings settings;
  settings.device = device;
  settings.quiet = global.quiet;
  settings.tells_in_place = !global.quiet;
  settings.plugin = global.plugin.empty() ? OwnPlugin() : fs::absolute(global.plugin);
  if (!global.trace.empty()) settings.trace = fs::absolute(global.trace);
  return settings;
}

Candidates InstalledIds(const GlobalOptions& global) {
  Candidates ids;
  for (const host::Package& package : ReadStore(OpenChosenDevice(global)).List()) {
    ids.push_back({package.id, package.version});
  }
  return ids;
}

Option IdArgument() {
  Option id{"PKG", "", "The package id"};
  id.candidates = InstalledIds;
  return id;
}

void RequireOneOf(const std::string& platform, const GlobalOptions& global) {
  if (platform.empty() || global.device.empty()) return;
  throw std::invalid_argument("--platform and --device exclude each other; name what to check against once");
}

void RunOnSession(Command& command, const std::function<int(const Session&)>& change) {
  command.run = [change, name = command.facts().name](const GlobalOptions& global) {
    const Session session(HookSettingsFor(global, OpenChosenDevice(global)));
    SayAll(session.mended());
    const Activity activity(name, !global.quiet);
    return change(session);
  };
}

void RunOnPackage(Command& command, const std::function<int(const Session&, const fs::path&)>& change) {
  const auto& package = command.Take<std::string>(PackageArgument());
  RunOnSession(command, [&package, change](const Session& session) {
    int status = kFailed;
    WithPackage(package, session.trees().PlaceToUnpack(),
                [&](const fs::path& directory) { status = change(session, directory); });
    return status;
  });
}

int PrintChange(const std::string& command, const Change& change, const std::string& done, const std::string& failed) {
  Say(change.Done() ? done : failed);
  SayAll(DescribeChange(change));
  if (change.Done()) return kDone;
  Complain(ComplaintAbout(command, change));
  return kFailed;
}

Command MakePackageEvent(const std::string& name, const std::string& description, const std::string& done,
                         const std::string& after, HookNames hooks) {
  Command command(name, description, name + " org.example.shop");
  const auto& id = command.Take<std::string>(IdArgument());
  RunOnSession(command, [=, &id](const Session& session) {
    const Change change = CallHooks(session, hooks, id);
    const std::string package = WithVersion(change.package.id, change.package.version);
    return PrintChange(name, change, done + " " + package + after, "not done: " + name + " " + package);
  });
  return command;
}

}  // namespace orvelbox
