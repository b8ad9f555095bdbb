// Names that the plug-in, the loader and readers of a device share. Each is defined once, here. The host platform's own
// file names are not here.
#ifndef BASE_FIXED_NAMES_H_
#define BASE_FIXED_NAMES_H_

#include <string_view>

// The cache files of the candidate loader, in kCacheDirectory. Their text is kStartMarker, the entries with
// kEntrySeparator between them, kEndMarker.
inline constexpr const char* kCacheDirectory = "/opt/usr/home/owner/share/dotnet/";
inline constexpr const char* kTpaFile = "TPA.txt";
inline constexpr const char* kCobaFile = "CoBA.txt";
inline constexpr const char* kCacheFiles[] = {kTpaFile, kCobaFile};
inline constexpr std::string_view kStartMarker = "[START]";
inline constexpr std::string_view kEndMarker = "[END]";
inline constexpr const char* kEmptyCache = "[START][END]";
inline constexpr char kEntrySeparator = ':';

// The information file for a removed DLL has the DLL's name followed by this suffix.
inline constexpr std::string_view kInformationFileSuffix = "_deleted";

// The directory of the platform's assemblies.
inline constexpr const char* kPlatformAssemblies = "/usr/share/dotnet.orvel";

// A package's shared resource directory is its root directory followed by this.
inline constexpr const char* kSharedResourceSuffix = "/shared/res/";

#endif
