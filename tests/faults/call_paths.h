// What an interposed function needs: the function that it hides, the paths that its call is about, and its fate; and
// a note of what gets opened.
#ifndef TESTS_FAULTS_CALL_PATHS_H_
#define TESTS_FAULTS_CALL_PATHS_H_

#include <dirent.h>
#include <dlfcn.h>

#include <cstdio>

#include "tests/faults/fault_points.h"

namespace faults {

// The function of that name which this program's definition hides.
template <typename Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Paths of calls, in plain memory.
struct Path {
  char text[4352] = {};
};

// The path of an open file, and that of `name` in an open directory.
Path PathOf(int file);
Path PathAt(int directory, const char* name);

// Whether the call is to fail; sets errno.
bool Fails(unsigned kind, const char* call, const char* path);
bool FailsOn(unsigned kind, const char* call, int file);

// Notes a descriptor, stream or directory that was opened, and returns it; -1 or null for one that was not.
int Opened(int file);
FILE* Opened(FILE* file);
DIR* Opened(DIR* directory);

// How many descriptors were opened in this process, and how many of them would have stayed open across an exec.
struct Openings {
  long all = 0;
  long inheritable = 0;
};
Openings& OpeningsSoFar();

}  // namespace faults

#endif
