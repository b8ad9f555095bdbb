// A minimal platform for the plug-in, without files, processes or allocations. A program that exports it replaces the
// platform's libraries.
#ifndef TESTS_FAULTS_SMALL_PLATFORM_H_
#define TESTS_FAULTS_SMALL_PLATFORM_H_

namespace small_platform {

struct Package {
  const char* id;
  const char* root;
  bool coba;
  const char* privilege;  // null: none
};

// The platform's content and counters.
struct State {
  static constexpr int kMostPackages = 4;
  Package packages[kMostPackages] = {};  // ended by one with a null id
  long restarts = 0;
  int open_spans = 0;
  int records = 0;  // created and not destroyed; filters are counted separately
  int filters = 0;
  int enumerations = 0;                    // the number that succeeded; each leaves its filter
  void (*watcher)(const char*) = nullptr;  // called with the name of every function that is called
};

State& Now();

}  // namespace small_platform

#endif
