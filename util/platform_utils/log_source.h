// The unit name under which every file of this folder logs.
#ifndef UTIL_PLATFORM_UTILS_LOG_SOURCE_H_
#define UTIL_PLATFORM_UTILS_LOG_SOURCE_H_

#include "util/log.h"  // IWYU pragma: export

inline constexpr LogSource kLogSource{kUtilityTag, "platform_utils"};

#endif
