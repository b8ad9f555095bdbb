// What belongs to the process that a plug-in is a guest in, and must be left as it is.
#ifndef TESTS_FAULTS_GUEST_WATCH_H_
#define TESTS_FAULTS_GUEST_WATCH_H_

#include <map>
#include <set>
#include <string>

namespace guest_watch {

// Everything of the process by name, in words: signal dispositions and mask, locale, umask, working directory,
// environment, resource limits, timers, libxml2's global state.
using Belongings = std::map<std::string, std::string>;
Belongings Look();

// What differs between the two looks, with both values.
std::string Differences(const Belongings& before, const Belongings& after);

// How many threads this process has.
int Threads();

// The descriptors that an exec would leave open.
std::set<int> InheritableDescriptors();

}  // namespace guest_watch

#endif
