// Memory that runs out.
#ifndef TESTS_FAULTS_MEMORY_CALLS_H_
#define TESTS_FAULTS_MEMORY_CALLS_H_

namespace faults {

// Lets libxml2's allocations count as memory calls. To be called before this process uses libxml2.
bool MakeXmlAllocationsFail();

}  // namespace faults

#endif
