// Metadata keys, metadata values, and the matchers that compare an entry with them. The plug-in reads the entries from
// the manifest (plugin/manifest.h).
#ifndef MORVATH_METADATA_UTILS_H_
#define MORVATH_METADATA_UTILS_H_

#include <string>

#include "morvath/export.h"

// One metadata entry. It does not own its texts.
struct Metadata {
  const char* key;
  const char* value;
};

namespace MetadataKey {
ORVEL_EXPORT extern const std::string coBA;
ORVEL_EXPORT extern const std::string viewPlugin;
ORVEL_EXPORT extern const std::string viewPluginPage;
ORVEL_EXPORT extern const std::string bpi;
ORVEL_EXPORT extern const std::string dpcRequired;
ORVEL_EXPORT extern const std::string dpcType;
ORVEL_EXPORT extern const std::string preferDotnetAot;
}  // namespace MetadataKey

ORVEL_EXPORT extern const std::string metadataValueTrue;
ORVEL_EXPORT extern const std::string metadataValueDpcorvelfxtv;

// The matchers compare byte for byte and log what they compare. An entry that is null, or that has a null key or value,
// does not match and is not logged.

// True when the entry's key is `key` and its value is "true".
ORVEL_EXPORT bool isMetadataInfoHasKey(Metadata* md, std::string key);
// True when the entry is the DPC type key with the value "orvelfxtv".
ORVEL_EXPORT bool isDpcKey(Metadata* md);
// True when the entry is the ahead-of-time preference key with the value "true".
ORVEL_EXPORT bool isPreferDotNETAOTKey(Metadata* md);
// True when the entry is one of the four CoBA keys with the value "true".
ORVEL_EXPORT bool isCobaKey(Metadata* md);

#endif
