// The state of the installer's process, which a plug-in must not change.
#ifndef TESTS_FAULTS_GUEST_WATCH_H_
#define TESTS_FAULTS_GUEST_WATCH_H_

#include <map>
#include <set>
#include <string>

namespace guest_watch {

// The state by name, as texts: signal dispositions and mask, locale, umask, working directory, environment, resource
// limits, timers, libxml2's global state.
using ProcessState = std::map<std::string, std::string>;
ProcessState ReadState();

// The differences between two states, with both values.
std::string Differences(const ProcessState& before, const ProcessState& after);

// The number of threads of this process.
int Threads();

// The descriptors that an exec would keep open.
std::set<int> InheritableDescriptors();

}  // namespace guest_watch

#endif
