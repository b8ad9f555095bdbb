// Helpers for interposed functions: the function that they hide, the paths that the call concerns, whether it must
// fail, and a count of opened descriptors.
#ifndef TESTS_FAULTS_CALL_PATHS_H_
#define TESTS_FAULTS_CALL_PATHS_H_

#include <dirent.h>
#include <dlfcn.h>

#include <cstdio>

#include "tests/faults/fault_points.h"

namespace faults {

// The function that this program's definition of that name hides.
template <typename Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Paths of calls, without dynamic memory.
struct Path {
  char text[4352] = {};
};

// The path of an open file, and that of `name` in an open directory.
Path PathOf(int file);
Path PathAt(int directory, const char* name);

// Must the call fail? If so, sets errno.
bool Fails(unsigned kind, const char* call, const char* path);
bool FailsOn(unsigned kind, const char* call, int file);

// Counts a descriptor, stream or directory and returns it; -1 or null when opening failed.
int Opened(int file);
FILE* Opened(FILE* file);
DIR* Opened(DIR* directory);

// How many descriptors this process opened, and how many of them an exec would keep open.
struct Openings {
  long all = 0;
  long inheritable = 0;
};
Openings& OpeningsSoFar();

}  // namespace faults

#endif
