// Runs a child process in which the platform's fixed paths show a directory of the desk: in a private mount namespace
// where the kernel allows one, otherwise (as root) through links on the machine. device.h has its layout.
#ifndef ORVEL_PLATFORM_HOST_FIXED_PATHS_H_
#define ORVEL_PLATFORM_HOST_FIXED_PATHS_H_

#include <filesystem>
#include <functional>
#include <string>

#include "platform/host/child_process.h"

namespace host {

enum class FixedPathsMethod {
  kMountNamespace,  // root: a private mount namespace
  kUserNamespace,   // ordinary user: a private user and mount namespace
  kInPlace,         // root without namespaces: links at the fixed paths, removed afterwards
  kNone,            // neither is possible
};

// Tries in a child process which method this process can use. Sets `reason` (may be null) to one line for people: why
// no better method works and what to do about it; empty for the first two methods. Returns kInPlace only when none of
// the fixed paths exists; links that a killed run of this program left do not count.
FixedPathsMethod AvailableFixedPathsMethod(std::string* reason);

// Forks, maps the fixed paths to `root` for the child (root/usr/share/dotnet.orvel at /usr/share/dotnet.orvel,
// root/opt/usr at /opt/usr, root/etc/release at /etc/release; a path missing in `root` is missing for the child) and
// runs `body` in it.
// The child exits with the low eight bits of body's result. An exception from `body` becomes one line on standard error
// and exit status 1. The working directory stays the same. SIGINT, SIGTERM and SIGHUP are passed on to the child.
// In place, processes take turns, so `body` must not start another run. `before_in_place` is called first, to inform
// the user. The links are removed even when the child crashes or is ended by one of those signals; the next run removes
// the links of a killed run.
// Nothing is written outside of `root` and the fixed paths except the lock file for the turns. Throws DeviceError when
// the method is kNone, when `root` is no directory or lies below a fixed path, or when the child cannot be set up.
ChildOutcome RunWithFixedPaths(
    const std::filesystem::path& root, const std::function<int()>& body,
    const std::function<void()>& before_in_place = [] {});

}  // namespace host

#endif
