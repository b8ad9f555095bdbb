// The fixed paths in a private mount namespace. Everything here is for a child process that will not go back.
#ifndef ORVEL_PLATFORM_HOST_FIXED_PATHS_MOUNTS_H_
#define ORVEL_PLATFORM_HOST_FIXED_PATHS_MOUNTS_H_

#include <filesystem>

namespace host {

// Gives the calling process, which must have one thread, a mount namespace of its own in which it may mount; an
// ordinary user gets a user namespace with it (`with_user`), root needs none. Throws DeviceError.
void EnterMountNamespace(bool with_user);

// In such a namespace: lays the fixed paths of `root` over the machine's; those that `root` does not have are not there
// afterwards. The working directory stays the same directory. Throws DeviceError.
void LayFixedPathsOver(const std::filesystem::path& root);

// Finds out whether mounting works at all, in such a namespace that is of no use afterwards. Throws DeviceError.
void TryMounting();

// Gives up the privileges that a user namespace brought to an ordinary user; root keeps them.
void DropNamespacePrivileges();

}  // namespace host

#endif
