// What an interposed function needs: the function that it hides, the paths that its call is about, and its fate.
#ifndef TESTS_FAULTS_CALL_PATHS_H_
#define TESTS_FAULTS_CALL_PATHS_H_

#include <dlfcn.h>

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

}  // namespace faults

#endif
