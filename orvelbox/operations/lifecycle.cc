// The steps, and what each may change.
#include "orvelbox/operations/lifecycle.h"

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "orvelbox/desk/json.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/device/state.h"
#include "orvelbox/operations/operations.h"
#include "orvelbox/package/manifest.h"
#include "orvelbox/package/source.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// Keeps the operations' own words back.
class Silence {
 public:
  Silence() : before_(SetQuiet(true)) {}
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() { SetQuiet(before_); }

 private:
  bool before_;
};

class LifecycleRun {
 public:
  explicit LifecycleRun(const HookSettings& settings) : session_(settings) {}

  // The id of the package that lives.
  void ReadId(const fs::path& package) {
    UnpackPlace unpacked = Unpacked();
    unpacked.wanted = [](const std::string& path) { return path == kManifestName; };
    WithPackage(package, unpacked, [&](const fs::path& directory) {
      id_ = ReadManifest(directory).package.id;
      return 0;
    });
  }

  // Does the step; afterwards the device is to be as `expected`, where that is given.
  bool Do(const std::string& name, const std::function<int()>& step, const DeviceState* expected) {
    LifecycleStep done{name, "", {}};
    try {
      const Silence silence;
      if (step() != 0) done.problem = "failed; what the plug-in said stands above";
    } catch (const host::DeviceError& error) {
      done.problem = error.what();
    }
    if (expected != nullptr) done.differences = Differences(*expected, State());
    steps_.push_back(std::move(done));
    return steps_.back().problem.empty();
  }

  int Change(const fs::path& package, int (*change)(const Session&, const fs::path&)) const {
    return WithPackage(package, Unpacked(), [&](const fs::path& directory) { return change(session_, directory); });
  }

  int Tell(const std::string& event) const {
    const auto& events = PackageEvents();
    const auto found =
        std::find_if(events.begin(), events.end(), [&](const PackageEvent& other) { return other.command == event; });
    return RunPackageEvent(session_, *found, id_);
  }

  int Leave() const { return Uninstall(session_, id_); }

  DeviceState State() const { return StateOf(session_.device()); }
  std::vector<LifecycleStep> TakeSteps() { return std::move(steps_); }

 private:
  UnpackPlace Unpacked() const {
    return {session_.trees().Unpacking(), [this] { session_.trees().RemoveUnpacked(); }};
  }

  Session session_;
  std::string id_;
  std::vector<LifecycleStep> steps_;
};

// A package that is there, told of these events, is to stay as it is.
bool StaysAsItIs(LifecycleRun& run, const std::vector<std::string>& events) {
  const DeviceState state = run.State();
  return std::all_of(events.begin(), events.end(), [&](const std::string& event) {
    return run.Do(
        event, [&] { return run.Tell(event); }, &state);
  });
}

void RunLifecycle(LifecycleRun& run, const fs::path& package, const fs::path& upgrade) {
  run.ReadId(package);
  const DeviceState empty = run.State();
  if (!run.Do(
          "install", [&] { return run.Change(package, Install); }, nullptr)) {
    run.Do(
        "taking the install back", [] { return 0; }, &empty);
    return;
  }
  if (!StaysAsItIs(run, {"clean", "undo", "recover"})) return;
  const DeviceState installed = run.State();
  if (!run.Do(
          "upgrade", [&] { return run.Change(upgrade, Upgrade); }, nullptr)) {
    run.Do(
        "taking the upgrade back", [] { return 0; }, &installed);
    return;
  }
  if (!StaysAsItIs(run, {"clean", "recover"})) return;
  run.Do(
      "uninstall", [&] { return run.Leave(); }, &empty);
}

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
  LifecycleRun run(settings);
  RunLifecycle(run, package, upgrade);
  return {package.string(), run.TakeSteps()};
}

Lines DescribeLifecycle(const Lifecycle& life) {
  Lines lines = {life.package + ": " +
                 (life.Passed() ? "lived through without a trace" : "left traces, or failed; see the steps")};
  for (const LifecycleStep& step : life.steps) {
    lines.push_back("    " + step.name + ": " + InWords(step));
    for (const std::string& difference : step.differences) lines.push_back("      " + difference);
  }
  return lines;
}

std::string ToJson(const Lifecycle& life) {
  Json json = {{"package", life.package}, {"sound", life.Passed()}, {"steps", Json::array()}};
  for (const LifecycleStep& step : life.steps) {
    json["steps"].push_back({{"step", step.name},
                             {"problem", step.problem.empty() ? Json() : Json(step.problem)},
                             {"differences", step.differences}});
  }
  return OneLine(json);
}

}  // namespace orvelbox
