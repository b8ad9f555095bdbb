// Names that are fixed between the plug-in, the loader and whoever looks at a device: each stands here once. What is
// done with them is elsewhere; the host platform's own files are not among them.
#ifndef BASE_FIXED_NAMES_H_
#define BASE_FIXED_NAMES_H_

#include <string_view>

// The candidate loader's cache files, in kCacheDirectory. Their text is kStartMarker, entries with kEntrySeparator
// between them, kEndMarker.
inline constexpr const char* kCacheDirectory = "/opt/usr/home/owner/share/dotnet/";
inline constexpr const char* kTpaFile = "TPA.txt";
inline constexpr const char* kCobaFile = "CoBA.txt";
inline constexpr const char* kCacheFiles[] = {kTpaFile, kCobaFile};
inline constexpr std::string_view kStartMarker = "[START]";
inline constexpr std::string_view kEndMarker = "[END]";
inline constexpr const char* kEmptyCache = "[START][END]";
inline constexpr char kEntrySeparator = ':';

// The information file that stands for a removed DLL has the DLL's name with this at its end.
inline constexpr std::string_view kInformationFileSuffix = "_deleted";

// Where the platform's assemblies lie.
inline constexpr const char* kPlatformAssemblies = "/usr/share/dotnet.orvel";

// A package's shared resource directory is its root directory followed by this.
inline constexpr const char* kSharedResourceSuffix = "/shared/res/";

#endif
