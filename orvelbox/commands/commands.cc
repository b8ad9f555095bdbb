// Each command by its name.
#include "orvelbox/commands/commands.h"

#include <algorithm>
#include <cstdlib>

#include "orvelbox/check/package_checker.h"
#include "orvelbox/check/platform_set.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/desk/scratch_directory.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/device/cache_verify.h"
#include "orvelbox/device/listings.h"
#include "orvelbox/history/why.h"
#include "orvelbox/operations/effects.h"
#include "orvelbox/operations/lifecycle.h"
#include "orvelbox/operations/report.h"
#include "orvelbox/package/source.h"
#include "orvelbox/trace/view.h"
#include "platform/host/child_process.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

const char* FromEnvironment(const char* name) { return std::getenv(name); }

// The plug-in that belongs to this program. Installed, it lies among the libraries; built, its directory lies beside
// this program's.
fs::path OwnPlugin() {
  const fs::path programs = fs::read_symlink("/proc/self/exe").parent_path();
  const fs::path installed = (programs / ORVELBOX_INSTALLED_PLUGIN).lexically_normal();
  return fs::exists(installed) ? installed : programs.parent_path() / "plugin" / "libmorvath.so";
}

HookSettings SettingsOf(const Options& options, const host::Device& device) {
  HookSettings settings;
  settings.device = device;
  settings.quiet = options.quiet;
  settings.plugin = options.plugin.empty() ? OwnPlugin() : fs::absolute(options.plugin);
  if (!options.trace.empty()) settings.trace = fs::absolute(options.trace);
  return settings;
}

host::Device OpenNamed(const Options& options) {
  return host::OpenDevice(ChooseDevice(options.device, FromEnvironment));
}

host::PackageStore ReadStore(const host::Device& device) {
  return host::PackageStore(device.Database(), host::PackageStore::Mode::kReadOnly);
}

// Takes back a device that could not be completed.
void RemoveDevice(const fs::path& directory, bool keep_directory) {
  if (!keep_directory) return RemoveTree(directory);
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) RemoveTree(entry.path());
}

void CopyPlatform(const fs::path& platform, const host::Device& device) {
  for (const char* name : host::kPlatformAssemblyDirectories) {
    if (IsThere(platform / name)) CopyTree(platform / name, device.OnDesk(host::kPlatformAssemblies) / name);
  }
}

int Init(const Options& options) {
  if (!options.platform.empty()) RequirePlatform(options.platform);
  const fs::path directory = ChooseDevice(options.device, FromEnvironment);
  const bool was_there = IsThere(directory);
  const host::Device device = host::CreateDevice(directory);
  const Activity activity(options.command, !options.quiet);
  try {
    if (!options.platform.empty()) CopyPlatform(options.platform, device);
  } catch (const host::DeviceError&) {
    RemoveDevice(device.directory, was_there);
    throw;
  }
  Say("made the device " + device.directory.string());
  return kDone;
}

int List(const Options& options) {
  const host::Device device = OpenNamed(options);
  const std::vector<host::Package> packages = ReadStore(device).List();
  if (options.json) {
    SayColoured(PackagesJson(packages));
  } else {
    SayAll(DescribePackages(packages));
  }
  return kDone;
}

int Show(const Options& options) {
  const host::Device device = OpenNamed(options);
  const host::Package package = FindInstalled(ReadStore(device), options.target);
  if (options.json) {
    SayColoured(PackageJson(package));
  } else {
    SayAll(DescribePackage(package));
  }
  return kDone;
}

int VerifyCaches(const host::Device& device, bool json) {
  const std::vector<host::Package> packages = ReadStore(device).List();
  std::vector<CacheFinding> findings = FindPrefixHazards(packages);
  for (const char* name : {"TPA.txt", "CoBA.txt"}) {
    const auto more = VerifyCache(name, ReadCache(device, name), packages,
                                  [&](const std::string& path) { return IsThere(device.OnDesk(path)); });
    findings.insert(findings.end(), more.begin(), more.end());
  }
  if (json) {
    SayColoured(ToJson(findings));
  } else {
    for (const CacheFinding& finding : findings) Say(finding.text);
    if (findings.empty()) Say("both cache files are sound");
  }
  return findings.empty() ? kDone : kFailed;
}

int Cache(const Options& options) {
  const host::Device device = OpenNamed(options);
  if (options.verify) return VerifyCaches(device, options.json);
  const CacheText tpa = ReadCache(device, "TPA.txt");
  const CacheText coba = ReadCache(device, "CoBA.txt");
  if (options.json) {
    SayColoured(CachesJson(tpa, coba));
  } else {
    SayAll(DescribeCache("TPA.txt", tpa));
    SayAll(DescribeCache("CoBA.txt", coba));
  }
  return kDone;
}

int Why(const Options& options) {
  const host::Device device = OpenNamed(options);
  const WhyQuestion question = ReadQuestion(device, ReadStore(device), options.target);
  const std::vector<Removal> removals = AskedFor(question, RemovalsOf(device, question.package));
  CheckedPackage today;
  if (!question.path.empty())
    today = PackageChecker(SetOfDevice(device), {}).Check(device.OnDesk(question.package.root));
  if (options.json) {
    SayColoured(WhyJson(question, removals, today));
  } else {
    SayAll(DescribeWhy(question, removals, today));
  }
  return kDone;
}

int Log(const Options& options) {
  const bool colour = ColourWanted(std::getenv("NO_COLOR"));
  ShowLog(OpenNamed(options), {options.log_filter, options.follow, colour, options.json});
  return kDone;
}

int Trace(const Options& options) {
  ShowTrace(options.target, options.output);
  return kDone;
}

// A device like the one that is asked for, without its packages; or one with the platform that is asked for.
host::Device MakeThrowAway(const Options& options, const fs::path& directory) {
  if (!options.platform.empty()) {
    RequirePlatform(options.platform);
    host::Device device = host::CreateDevice(directory);
    CopyPlatform(options.platform, device);
    return device;
  }
  const host::Device model = OpenNamed(options);
  host::Device device = host::CreateDevice(directory, host::ReadConfig(model));
  CopyPlatform(model.OnDesk(host::kPlatformAssemblies), device);
  return device;
}

int TestPackage(const Options& options) {
  const host::HeldSignals signals;  // so that an interruption leaves no device behind
  const ScratchDirectory scratch;
  const Activity activity(options.command, !options.quiet);
  HookSettings settings = SettingsOf(options, MakeThrowAway(options, scratch.path() / "device"));
  settings.quiet = true;
  const Life life = LiveThrough(settings, options.target, options.upgrade.empty() ? options.target : options.upgrade);
  if (options.json) {
    SayColoured(ToJson(life));
  } else {
    SayAll(DescribeLife(life));
  }
  return life.Sound() ? kDone : kFailed;
}

int CheckPackages(const Options& options) {
  const bool without_device = !options.check.platform.empty();
  CheckOptions check = options.check;
  check.quiet = options.quiet;
  return Check(check, without_device ? fs::path() : ChooseDevice(options.device, FromEnvironment));
}

int ChangeWithPackage(const Session& session, const fs::path& package, int (*change)(const Session&, const fs::path&)) {
  const Scratch scratch{session.area().Unpacking(), [&] { session.area().RemoveUnpacked(); }};
  return WithPackage(package, scratch, [&](const fs::path& directory) { return change(session, directory); });
}

int RunChange(const Options& options) {
  const Session session(SettingsOf(options, OpenNamed(options)));
  const Activity activity(options.command, !options.quiet);
  if (options.command == "install") return ChangeWithPackage(session, options.target, Install);
  if (options.command == "upgrade") return ChangeWithPackage(session, options.target, Upgrade);
  if (options.command == "uninstall") return Uninstall(session, options.target);
  if (options.command == "events") return RunRawEvents(session, options.events);
  const auto& events = PackageEvents();
  const auto event = std::find_if(events.begin(), events.end(),
                                  [&](const PackageEvent& other) { return options.command == other.command; });
  return RunPackageEvent(session, *event, options.target);
}

}  // namespace

int RunCommand(const Options& options) {
  SetQuiet(options.quiet);
  if (!options.trace.empty()) RequireTraceable(options.trace);
  if (options.command == "check") return CheckPackages(options);
  if (options.command == "init") return Init(options);
  if (options.command == "list") return List(options);
  if (options.command == "show") return Show(options);
  if (options.command == "cache") return Cache(options);
  if (options.command == "test") return TestPackage(options);
  if (options.command == "why") return Why(options);
  if (options.command == "log") return Log(options);
  if (options.command == "trace") return Trace(options);
  return RunChange(options);
}

}  // namespace orvelbox
