// The one name under which every file of the plug-in logs.
#ifndef PLUGIN_LOG_SOURCE_H_
#define PLUGIN_LOG_SOURCE_H_

#include "util/log.h"

inline constexpr LogSource kLogSource{kPluginTag, "morvath"};

#endif
