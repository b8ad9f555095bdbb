// Notes what gets opened, for tests that mind descriptors.
#ifndef TESTS_FAULTS_OPENED_H_
#define TESTS_FAULTS_OPENED_H_

namespace faults {

// Called with every descriptor that is opened, or with -1 for one that was not.
void NoteOpened(int file);

// How many descriptors were opened in this process, and how many of them would have stayed open across an exec.
struct Openings {
  long all = 0;
  long inheritable = 0;
};
Openings& OpeningsSoFar();

}  // namespace faults

#endif
