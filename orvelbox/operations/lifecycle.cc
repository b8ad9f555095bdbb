// The steps, and what each may change.
#include "orvelbox/operations/lifecycle.h"

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "orvelbox/device/state.h"
#include "orvelbox/operations/operations.h"
#include "orvelbox/operations/report.h"
#include "orvelbox/package/manifest.h"
#include "platform/host/json.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

class LifecycleRun {
 public:
  LifecycleRun(const HookSettings& settings, const fs::path& package) : session_(settings), id_(IdOf(package)) {}

  // The steps up to the one that fails.
  void Run(const fs::path& package, const fs::path& upgrade) {
    const DeviceState empty = State();
    if (!PutIn("install", package, empty, Install)) return;
    if (!StaysAsItIs({{"clean", kCleanHooks}, {"undo", kUndoHooks}, {"recover", kRecoverHooks}})) return;
    const DeviceState installed = State();
    if (!PutIn("upgrade", upgrade, installed, Upgrade)) return;
    if (!StaysAsItIs({{"clean", kCleanHooks}, {"recover", kRecoverHooks}})) return;
    Do("uninstall", [&] { return Uninstall(session_, id_); });
    Compare(empty);
  }

  std::vector<LifecycleStep> TakeSteps() { return std::move(steps_); }

 private:
  using Event = std::pair<const char*, HookNames>;

  static std::string IdOf(const fs::path& package) {
    return (IsArchive(package) ? ReadManifest(Archive(package)) : ReadManifest(package)).package.id;
  }

  DeviceState State() const { return StateOf(session_.device()); }

  // Adds the step; false when it fails.
  bool Do(const std::string& name, const std::function<Change()>& operation) {
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

  // After the last step the device is to be as `expected`.
  void Compare(const DeviceState& expected) { steps_.back().differences = Differences(expected, State()); }

  // Puts the package in; when that fails, the device is to be as `before`.
  bool PutIn(const std::string& name, const fs::path& package, const DeviceState& before,
             Change (*change)(const Session&, const fs::path&)) {
    const bool done = Do(name, [&] {
      Change result;
      WithPackage(package, session_.trees().PlaceToUnpack(),
                  [&](const fs::path& directory) { result = change(session_, directory); });
      return result;
    });
    if (done) return true;
    steps_.push_back({"taking the " + name + " back", "", "", Differences(before, State())});
    return false;
  }

  // The package, told of these events, is to stay as it is.
  bool StaysAsItIs(const std::vector<Event>& events) {
    const DeviceState state = State();
    return std::all_of(events.begin(), events.end(), [&](const Event& event) {
      const bool done = Do(event.first, [&] { return CallHooks(session_, event.second, id_); });
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
