// The operator new of programs in which memory runs out: whoever links it decides when.
#ifndef TESTS_SUPPORT_OWN_NEW_H_
#define TESTS_SUPPORT_OWN_NEW_H_

namespace support {

// Asked before every allocation: is it to fail? For the linking program to define.
bool AllocationFails();

}  // namespace support

#endif
