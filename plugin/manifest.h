// What kind of application a package's manifest declares. Documents are read, never parsed or kept, here.
#ifndef PLUGIN_MANIFEST_H_
#define PLUGIN_MANIFEST_H_

#include <libxml/tree.h>

#include "morvath/export.h"

// Does the manifest declare an application whose type contains "dotnet-" (and, unlike a sample app's, no "apitest")?
// Once one did, every later one counts as such while the library is loaded, but null: false, with an error line.
ORVEL_EXPORT bool isAppDotnetInhouse(xmlDocPtr doc);

// Does the manifest carry a CoBA metadata entry? Null: false, with an error line.
ORVEL_EXPORT bool isAppCoBARelated(xmlDocPtr doc);

#endif
