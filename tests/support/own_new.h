// The operator new of programs in which memory runs out. The linking program decides when.
#ifndef TESTS_SUPPORT_OWN_NEW_H_
#define TESTS_SUPPORT_OWN_NEW_H_

namespace support {

// Must the next allocation fail? The linking program defines this function.
bool AllocationFails();

}  // namespace support

#endif
