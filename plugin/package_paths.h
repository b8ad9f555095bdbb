// Paths inside a package that more than one part of the plug-in uses.
#ifndef PLUGIN_PACKAGE_PATHS_H_
#define PLUGIN_PACKAGE_PATHS_H_

// A package's shared resource directory is its root directory followed by this.
inline constexpr const char* kSharedResourceSuffix = "/shared/res/";

#endif
