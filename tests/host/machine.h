// Machines that a test process can put itself on: the real one, changed in a namespace of the process's own; and who it
// is there.
#ifndef TESTS_HOST_MACHINE_H_
#define TESTS_HOST_MACHINE_H_

#include <string>

namespace machine {

// Moves this process onto a machine of its own: root there, with /opt, /usr/share, /etc and /run empty and writable
// and everything else as on the real one. For a child process of a test. Throws std::runtime_error.
void EnterEmptied();

// Why EnterEmptied would fail or hide the file `needed`, or nothing when it works.
std::string ObstacleToEmptied(const std::string& needed = "");

// On an emptied machine: removes "/opt" itself.
void RemoveOpt();

// Makes root's process one of the user "nobody", for good; an ordinary user's stays what it is. Throws
// std::runtime_error.
void BecomeOrdinaryUser();

// Makes the kernel refuse namespaces and mounts to this process and its children for good, as it does in a container
// without special rights. Throws std::runtime_error.
void RefuseNamespaces();

}  // namespace machine

#endif
