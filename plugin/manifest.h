// Which kind of application a package's manifest declares. Documents are only read here, not parsed or stored.
#ifndef PLUGIN_MANIFEST_H_
#define PLUGIN_MANIFEST_H_

#include <libxml/tree.h>

#include <optional>

#include "morvath/export.h"

// The kind of the first application whose type contains "apitest" (sample) or else "dotnet-" (dotnet); kOther when
// there is none. No result for a document that cannot be walked, and for null, with an error line. Keeps no state.
enum class ApplicationKind { kDotnet, kSample, kOther };
std::optional<ApplicationKind> DeclaredKind(xmlDocPtr doc);

// Does the manifest declare a dotnet application? After the first true answer, the answer is true for every document
// while the library is loaded, except for null: false, with an error line.
ORVEL_EXPORT bool isAppDotnetInhouse(xmlDocPtr doc);

// Does the manifest have a CoBA metadata entry? For null, logs an error and returns false.
ORVEL_EXPORT bool isAppCoBARelated(xmlDocPtr doc);

#endif
