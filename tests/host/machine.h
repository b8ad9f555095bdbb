// Changes the machine as the test's process sees it, in new namespaces, and the user of the process.
#ifndef TESTS_HOST_MACHINE_H_
#define TESTS_HOST_MACHINE_H_

#include <string>

namespace machine {

// Moves this process into new namespaces: it is root there; /opt, /usr/share, /etc and /run are empty and writable;
// everything else is unchanged. For a child process of a test. Throws std::runtime_error.
void EnterEmptied();

// Why EnterEmptied would fail or hide the file `needed`; nothing when it works.
std::string ObstacleToEmptied(const std::string& needed = "");

// On an emptied machine: removes "/opt" itself.
void RemoveOpt();

// Changes root's process to the user "nobody", permanently. Does nothing for an ordinary user. Throws
// std::runtime_error.
void BecomeOrdinaryUser();

// Makes the kernel refuse namespaces and mounts to this process and its children, as in a container without special
// rights. Throws std::runtime_error.
void RefuseNamespaces();

// The same for mounts alone.
void RefuseMounts();

}  // namespace machine

#endif
