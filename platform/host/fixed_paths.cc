// Chooses the method for the fixed paths and runs a child with it.
#include "platform/host/fixed_paths.h"

#include <unistd.h>

#include <array>
#include <optional>

#include "platform/host/child_process.h"
#include "platform/host/device.h"
#include "platform/host/fixed_paths_methods.h"
#include "platform/host/paths.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kHowToAllow =
    "allow user namespaces (sysctl user.max_user_namespaces; in a container, its security options)";

// Why `method` does not work here; nothing when it works.
std::optional<std::string> ObstacleTo(FixedPathsMethod method) {
  try {
    const HeldSignals signals;
    const auto set_up = [&] {
      EnterMountNamespace(method == FixedPathsMethod::kUserNamespace);
      TryMounting();
    };
    RunChild(signals, set_up, [] { return 0; });
    return std::nullopt;
  } catch (const DeviceError& error) {
    return error.what();
  }
}

FixedPathsMethod Answer(FixedPathsMethod method, const std::string& text, std::string* reason) {
  if (reason != nullptr) *reason = text;
  return method;
}

FixedPathsMethod MethodWithoutNamespaces(const std::string& refusal, std::string* reason) {
  const std::string start = "no private namespaces here (" + refusal + ")";
  const std::string how = kHowToAllow;
  if (geteuid() != 0) return Answer(FixedPathsMethod::kNone, start + ": " + how + ", or run as root", reason);
  const auto obstacle = ObstacleInPlace();
  if (!obstacle) {
    return Answer(FixedPathsMethod::kInPlace, start + ", only working in place: to leave the machine alone, " + how,
                  reason);
  }
  return Answer(FixedPathsMethod::kNone, start + ", and no working in place (" + *obstacle + "): mend that, or " + how,
                reason);
}

void CheckRoot(const fs::path& root) {
  if (!fs::is_directory(root)) throw DeviceError(root.string() + ": is no directory to take the fixed paths from");
  for (const char* fixed : kFixedPaths) {
    if (!IsAtOrBelow(root, fixed)) continue;
    throw DeviceError(root.string() + ": lies under " + fixed +
                      ", which the device has to provide itself; use a device in another place");
  }
}

ChildOutcome RunInNamespace(FixedPathsMethod method, const fs::path& root, const std::function<int()>& body) {
  const HeldSignals signals;
  const bool with_user = method == FixedPathsMethod::kUserNamespace;
  const auto set_up = [&] {
    EnterMountNamespace(with_user);
    MountFixedPaths(root);
    if (with_user) DropNamespacePrivileges();
  };
  return RunChild(signals, set_up, body);
}

ChildOutcome RunInPlace(const fs::path& root, const std::function<int()>& body) {
  const UniqueFd turn = LockFixedPaths();  // may wait for other processes; a signal can interrupt that
  const HeldSignals signals;
  const InPlaceLinks links(turn, root);
  return RunChild(
      signals, [] {}, body);
}

}  // namespace

FixedPathsMethod AvailableFixedPathsMethod(std::string* reason) {
  std::optional<std::string> refusal;
  for (const auto method : {FixedPathsMethod::kMountNamespace, FixedPathsMethod::kUserNamespace}) {
    if (method == FixedPathsMethod::kMountNamespace && geteuid() != 0) continue;
    refusal = ObstacleTo(method);
    if (!refusal) return Answer(method, "", reason);
  }
  return MethodWithoutNamespaces(*refusal, reason);
}

ChildOutcome RunWithFixedPaths(const fs::path& root, const std::function<int()>& body,
                               const std::function<void()>& before_in_place) {
  std::error_code error;
  const fs::path canonical = fs::canonical(root, error);
  CheckRoot(error ? root : canonical);
  std::string reason;
  const auto method = AvailableFixedPathsMethod(&reason);
  switch (method) {
    case FixedPathsMethod::kNone:
      throw DeviceError(reason);
    case FixedPathsMethod::kInPlace:
      before_in_place();
      return RunInPlace(canonical, body);
    default:
      return RunInNamespace(method, canonical, body);
  }
}

}  // namespace host
