// The steps, and what each may change.
#include "orvelbox/operations/lifecycle.h"

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

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

class LifeRun {
 public:
  explicit LifeRun(const HookSettings& settings) : session_(settings) {}

  // The id of the package that lives.
  void ReadId(const fs::path& package) {
    Scratch unpacked = Unpacked();
    unpacked.wanted = [](const std::string& path) { return path == kManifestName; };
    WithPackage(package, unpacked, [&](const fs::path& directory) {
      id_ = ReadManifest(directory).package.id;
      return 0;
    });
  }

  // Does the step; afterwards the device is to be as `expected`, where that is given.
  bool Do(const std::string& name, const std::function<int()>& step, const DeviceState* expected) {
    LifeStep done{name, "", {}};
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
  std::vector<LifeStep> TakeSteps() { return std::move(steps_); }

 private:
  Scratch Unpacked() const {
    return {session_.area().Unpacking(), [this] { session_.area().RemoveUnpacked(); }};
  }

  Session session_;
  std::string id_;
  std::vector<LifeStep> steps_;
};

// A package that is there, told of these events, is to stay as it is.
bool StaysAsItIs(LifeRun& run, const std::vector<std::string>& events) {
  const DeviceState state = run.State();
  return std::all_of(events.begin(), events.end(), [&](const std::string& event) {
    return run.Do(
        event, [&] { return run.Tell(event); }, &state);
  });
}

void LiveThrough(LifeRun& run, const fs::path& package, const fs::path& upgrade) {
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

std::string InWords(const LifeStep& step) {
  if (!step.problem.empty()) return step.problem;
  return step.differences.empty() ? "done" : "done, but the device is not as it should be:";
}

}  // namespace

bool Life::Sound() const {
  return std::all_of(steps.begin(), steps.end(),
                     [](const LifeStep& step) { return step.problem.empty() && step.differences.empty(); });
}

Life LiveThrough(const HookSettings& settings, const fs::path& package, const fs::path& upgrade) {
  LifeRun run(settings);
  LiveThrough(run, package, upgrade);
  return {package.string(), run.TakeSteps()};
}

Lines DescribeLife(const Life& life) {
  Lines lines = {life.package + ": " +
                 (life.Sound() ? "lived through without a trace" : "left traces, or failed; see the steps")};
  for (const LifeStep& step : life.steps) {
    lines.push_back("    " + step.name + ": " + InWords(step));
    for (const std::string& difference : step.differences) lines.push_back("      " + difference);
  }
  return lines;
}

std::string ToJson(const Life& life) {
  using Json = nlohmann::ordered_json;
  Json json = {{"package", life.package}, {"sound", life.Sound()}, {"steps", Json::array()}};
  for (const LifeStep& step : life.steps) {
    json["steps"].push_back({{"step", step.name},
                             {"problem", step.problem.empty() ? Json() : Json(step.problem)},
                             {"differences", step.differences}});
  }
  return json.dump(-1, ' ', true, Json::error_handler_t::replace);
}

}  // namespace orvelbox
