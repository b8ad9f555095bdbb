// A platform in plain memory: what the plug-in asks it for, without files, processes or allocations of its own. It
// takes the place of the platform's libraries in a program that exports it.
#ifndef TESTS_FAULTS_SMALL_PLATFORM_H_
#define TESTS_FAULTS_SMALL_PLATFORM_H_

namespace small_platform {

struct Package {
  const char* id;
  const char* root;
  bool coba;
  const char* privilege;  // null: none
};

// What is there and what was asked so far.
struct State {
  static constexpr int kMostPackages = 4;
  Package packages[kMostPackages] = {};  // ended by one with a null id
  long restarts = 0;
  int open_spans = 0;
  int records = 0;  // handed out and not destroyed; filters are counted on their own
  int filters = 0;
  int enumerations = 0;                    // that succeeded: each leaves its filter
  void (*watcher)(const char*) = nullptr;  // told the name of every function that is called
};

State& Now();

}  // namespace small_platform

#endif
