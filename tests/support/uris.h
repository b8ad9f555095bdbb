// The metadata keys and privileges that tests use. They are spelled out here, so that a wrong one in the code under
// test is detected.
#ifndef TESTS_SUPPORT_URIS_H_
#define TESTS_SUPPORT_URIS_H_

namespace support {

inline constexpr const char* kCobaKeys[] = {"http://" ORVEL_DEVELOPER_HOST
                                            "/orvel/metadata/support-fs-external-component",
                                            "http://" ORVEL_DEVELOPER_HOST "/orvel/metadata/support-view-plugin",
                                            "http://" ORVEL_DEVELOPER_HOST "/orvel/metadata/support-view-plugin-page",
                                            "http://" ORVEL_DEVELOPER_HOST "/orvel/metadata/support-bpi"};
inline constexpr const char* kCobaKey = kCobaKeys[0];
inline constexpr const char* kDpcRequiredKey = "http://" ORVEL_TV_HOST "/tv/metadata/d.pc/required";
inline constexpr const char* kDpcTypeKey = "http://" ORVEL_TV_HOST "/tv/metadata/d.pc/type";
inline constexpr const char* kAotKey = "http://" ORVEL_NAMESPACE_HOST "/metadata/prefer_dotnet_aot";
inline constexpr const char* kDebuggingPrivilege = "http://" ORVEL_NAMESPACE_HOST "/privilege/internal/appdebugging";
inline constexpr const char* kPlatformPrivilege = "http://" ORVEL_NAMESPACE_HOST "/privilege/internal/default/platform";

}  // namespace support

#endif
