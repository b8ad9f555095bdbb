// The one name under which every file of the plug-in logs, and the texts that others know as well.
#ifndef PLUGIN_LOG_SOURCE_H_
#define PLUGIN_LOG_SOURCE_H_

#include "base/log_texts.h"  // IWYU pragma: export
#include "util/log.h"        // IWYU pragma: export

inline constexpr LogSource kLogSource{kPluginTag, kPluginUnit};

#endif
