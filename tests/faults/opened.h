// Notes what gets opened, for tests that mind descriptors.
#ifndef TESTS_FAULTS_OPENED_H_
#define TESTS_FAULTS_OPENED_H_

#include <dirent.h>

#include <cstdio>

namespace faults {

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
