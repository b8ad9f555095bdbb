// Gives a child process the platform's fixed paths, laid over a directory of the desk: in a private mount namespace
// where the kernel allows one, else (as root) in place. The layout of the directory is in device.h.
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

// Finds out, by trying it in a child process, which method this process can use. `reason` (may be null) receives one
// line for people: why a better method is not there and what to do about it; empty for the first two methods.
// kInPlace is answered only when none of the fixed paths exists (our own leftovers of a killed run do not count).
FixedPathsMethod AvailableFixedPathsMethod(std::string* reason);

// Forks, gives the child the fixed paths of `root` (root/usr/share/dotnet.orvel at /usr/share/dotnet.orvel,
// root/opt/usr at /opt/usr, and root/etc/release at /etc/release; a path that `root` does not have is not there) and
// runs `body` in it; the low eight bits of its result are the child's exit status. The working directory stays the
// same directory, wherever it lies. An exception that leaves `body` becomes one line on standard error and exit status
// 1. SIGINT, SIGTERM and SIGHUP that reach this process meanwhile are passed on to the child. In place, runs of
// several processes take turns (so `body` must not run another), `before_in_place` is called first, to tell people, and
// what was made at the fixed paths is removed even when the child crashes or is ended by one of those signals; what a
// killed run left behind, the next one removes. Nothing outside of `root` and the fixed paths is ever written, but for
// the lock file of those turns. Throws DeviceError when the method is kNone, when `root` is no directory or
// lies under a fixed path itself, or when the child cannot be set up.
ChildOutcome RunWithFixedPaths(
    const std::filesystem::path& root, const std::function<int()>& body,
    const std::function<void()>& before_in_place = [] {});

}  // namespace host

#endif
