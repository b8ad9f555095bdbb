// The environment variables that tell a killable program when to end.
#ifndef TESTS_FAULTS_KILLABLE_H_
#define TESTS_FAULTS_KILLABLE_H_

namespace killable {

inline constexpr const char* kAt = "TEST_END_AT";             // the number of the call, from 1
inline constexpr const char* kDirectory = "TEST_DIRECTORY";   // calls below it count too, like those on the fixed paths
inline constexpr const char* kHalfWritten = "TEST_END_AMID";  // set: in the middle of the call, if it is a write

}  // namespace killable

#endif
