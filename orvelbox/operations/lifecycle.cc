// The steps of the lifecycle, and what each may change.
#include "orvelbox/operations/lifecycle.h"

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "orvelbox/device/listings.h"
#include "orvelbox/operations/operations.h"
#include "orvelbox/operations/report.h"
#include "orvelbox/package/archive.h"
#include "orvelbox/package/manifest.h"
#include "platform/host/files.h"
#include "platform/host/json.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

std::string Describe(const fs::directory_entry& entry) {
  switch (entry.symlink_status().type()) {
    case fs::file_type::regular: {
      const std::string content = host::ReadFile(entry.path());
      return "file of " + std::to_string(content.size()) + " bytes, " +
             std::to_string(std::hash<std::string>()(content));
    }
    case fs::file_type::symlink:
      return "link to " + fs::read_symlink(entry.path()).string();
    case fs::file_type::directory:
      return "directory";
    default:
      return "special file";
  }
}

class LifecycleRun {
 public:
  LifecycleRun(const HookSettings& settings, const fs::path& package) : session_(settings), id_(IdOf(package)) {}

  // Runs the steps up to the first that fails.
  void Run(const fs::path& package, const fs::path& upgrade) {
    const DeviceState empty = State();
    if (!InstallOrUpgrade("install", package, empty, Install)) return;
    if (!SendEvents({{"clean", kCleanHooks}, {"undo", kUndoHooks}, {"recover", kRecoverHooks}})) return;
    const DeviceState installed = State();
    if (!InstallOrUpgrade("upgrade", upgrade, installed, Upgrade)) return;
    if (!SendEvents({{"clean", kCleanHooks}, {"recover", kRecoverHooks}})) return;
    AddStep("uninstall", [&] { return Uninstall(session_, id_); });
    Compare(empty);
  }

  std::vector<LifecycleStep> TakeSteps() { return std::move(steps_); }

 private:
  using Event = std::pair<const char*, HookNames>;

  static std::string IdOf(const fs::path& package) {
    return (IsArchive(package) ? ReadManifest(Archive(package)) : ReadManifest(package)).package.id;
  }

  DeviceState State() const { return StateOf(session_.device()); }

  // Adds the step; returns false when it fails.
  bool AddStep(const std::string& name, const std::function<Change()>& operation) {
    LifecycleStep step{name, "", "", {}};
    try {
      const Change change = operation();
      if (!change.Done()) {
        step.problem = "failed; what the plug-in said stands above";
        step.complaint = ComplaintAbout(name, change);
      }
    } catch (const host::DeviceError& error) {
      step.problem = error.what();
    }
    steps_.push_back(std::move(step));
    return steps_.back().problem.empty();
  }

  // After the last step, the device must be as `expected`.
  void Compare(const DeviceState& expected) { steps_.back().differences = Differences(expected, State()); }

  // Installs or upgrades the package. When that fails, the device must be as `before`.
  bool InstallOrUpgrade(const std::string& name, const fs::path& package, const DeviceState& before,
                        Change (*change)(const Session&, const fs::path&)) {
    const bool done = AddStep(name, [&] {
      Change result;
      WithPackage(package, session_.trees().PlaceToUnpack(),
                  [&](const fs::path& directory) { result = change(session_, directory); });
      return result;
    });
    if (done) return true;
    steps_.push_back({"taking the " + name + " back", "", "", Differences(before, State())});
    return false;
  }

  // Sends the events, which must not change the package.
  bool SendEvents(const std::vector<Event>& events) {
    const DeviceState state = State();
    return std::all_of(events.begin(), events.end(), [&](const Event& event) {
      const bool done = AddStep(event.first, [&] { return CallHooks(session_, event.second, id_); });
      Compare(state);
      return done;
    });
  }

  Session session_;
  std::string id_;
  std::vector<LifecycleStep> steps_;
};

std::string InWords(const LifecycleStep& step) {
  if (!step.problem.empty()) return step.problem;
  return step.differences.empty() ? "done" : "done, but the device is not as it should be:";
}

}  // namespace

DeviceState StateOf(const host::Device& device) {
  DeviceState state;
  const host::PackageStore store(device.Database(), host::PackageStore::Mode::kReadOnly);
  for (const host::Package& package : store.List()) state["package " + package.id] = PackageJson(package);
  host::WithFileErrors(device.Root(), "read", [&] {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(device.Root())) {
      state["/" + entry.path().lexically_relative(device.Root()).string()] = Describe(entry);
    }
  });
  return state;
}

Lines Differences(const DeviceState& before, const DeviceState& after) {
  DeviceState all = before;
  all.insert(after.begin(), after.end());
  Lines lines;
  for (const auto& [name, ignored] : all) {
    const auto then = before.find(name);
    const auto now = after.find(name);
    if (then == before.end()) {
      lines.push_back("+ " + name);
    } else if (now == after.end()) {
      lines.push_back("- " + name);
    } else if (then->second != now->second) {
      lines.push_back("~ " + name);
    }
  }
  return lines;
}

bool Lifecycle::Passed() const {
  return std::all_of(steps.begin(), steps.end(),
                     [](const LifecycleStep& step) { return step.problem.empty() && step.differences.empty(); });
}

Lifecycle RunLifecycle(const HookSettings& settings, const fs::path& package, const fs::path& upgrade) {
  LifecycleRun run(settings, package);
  run.Run(package, upgrade);
  return {package.string(), run.TakeSteps()};
}

Lines DescribeLifecycle(const Lifecycle& lifecycle) {
  Lines lines = {lifecycle.package + ": " +
                 (lifecycle.Passed() ? "lived through without a trace" : "left traces, or failed; see the steps")};
  for (const LifecycleStep& step : lifecycle.steps) {
    lines.push_back("    " + step.name + ": " + InWords(step));
    for (const std::string& difference : step.differences) lines.push_back("      " + difference);
  }
  return lines;
}

std::string ToJson(const Lifecycle& lifecycle) {
  host::Json json = {{"package", lifecycle.package}, {"sound", lifecycle.Passed()}, {"steps", host::Json::array()}};
  for (const LifecycleStep& step : lifecycle.steps) {
    json["steps"].push_back({{"step", step.name},
                             {"problem", step.problem.empty() ? host::Json() : host::Json(step.problem)},
                             {"differences", step.differences}});
  }
  return host::AsciiJson(json);
}

}  // namespace orvelbox
