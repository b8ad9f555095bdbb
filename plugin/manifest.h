// What kind of application a package's manifest declares. Documents are read, never parsed or kept, here.
#ifndef PLUGIN_MANIFEST_H_
#define PLUGIN_MANIFEST_H_

#include <libxml/tree.h>

#include <optional>

#include "morvath/export.h"

// What the first application of a manifest says that decides: its type contains "apitest", or else "dotnet-"; or there
// is none. Nothing for null, with an error line, and for a document that cannot be walked. Keeps no state.
enum class ApplicationKind { kDotnet, kSample, kOther };
std::optional<ApplicationKind> DeclaredKind(xmlDocPtr doc);

// Does the manifest declare a dotnet application? Once one did, every later one counts as such while the library is
// loaded, but null: false, with an error line.
ORVEL_EXPORT bool isAppDotnetInhouse(xmlDocPtr doc);

// Does the manifest carry a CoBA metadata entry? Null: false, with an error line.
ORVEL_EXPORT bool isAppCoBARelated(xmlDocPtr doc);

#endif
