// The metadata key and the privileges that tests give to packages. Spelled out here, so that a wrong one in the code
// under test is noticed.
#ifndef TESTS_SUPPORT_URIS_H_
#define TESTS_SUPPORT_URIS_H_

namespace support {

inline constexpr const char* kCobaKey = "http://" ORVEL_DEVELOPER_HOST "/orvel/metadata/support-fs-external-component";
inline constexpr const char* kDebuggingPrivilege = "http://" ORVEL_NAMESPACE_HOST "/privilege/internal/appdebugging";
inline constexpr const char* kPlatformPrivilege = "http://" ORVEL_NAMESPACE_HOST "/privilege/internal/default/platform";

}  // namespace support

#endif
