// A directory laid out as the "/" of a device, for tests of the plug-in's fixed paths.
#ifndef TESTS_SUPPORT_DEVICE_ROOT_H_
#define TESTS_SUPPORT_DEVICE_ROOT_H_

#include <functional>
#include <string>

namespace support {

inline constexpr const char* kCoreDirectory = "/usr/share/dotnet.orvel/netcoreapp/";
inline constexpr const char* kFrameworkDirectory = "/usr/share/dotnet.orvel/framework/";
inline constexpr const char* kDpcDirectory = "/usr/share/dotnet.orvel/d.pc/";
inline constexpr const char* kTvAppApiDirectory = "/usr/share/dotnet.orvel/tvappapi/";
inline constexpr const char* kCacheDirectory = "/opt/usr/home/owner/share/dotnet/";
inline constexpr const char* kTpaFile = "/opt/usr/home/owner/share/dotnet/TPA.txt";
inline constexpr const char* kCobaFile = "/opt/usr/home/owner/share/dotnet/CoBA.txt";

// Runs `body` in a new process in which the fixed paths are those of a new, empty device: the platform's assembly
// directories and the cache directory exist, the cache files do not. Must be the last statement of a test.
void OnDevice(const std::function<void()>& body);

}  // namespace support

#endif
