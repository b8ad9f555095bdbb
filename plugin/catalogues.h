// The four catalogues of assemblies: which file names are already provided, and where. Filling them and judging by
// them is done elsewhere.
#ifndef PLUGIN_CATALOGUES_H_
#define PLUGIN_CATALOGUES_H_

#include <map>
#include <string>

#include "morvath/export.h"

// Bare file name -> full path of the first file of that name.
using Catalogue = std::map<std::string, std::string>;

// The plug-in's own catalogues. They only grow while the library is loaded.
ORVEL_EXPORT extern Catalogue coreFX;   // the core runtime
ORVEL_EXPORT extern Catalogue orvelFX;  // the platform framework
ORVEL_EXPORT extern Catalogue coBA;     // CoBA components
ORVEL_EXPORT extern Catalogue appLib;   // the packages' own lib directories

// One set of catalogues, owned by somebody else.
struct Catalogues {
  Catalogue& core;
  Catalogue& framework;
  Catalogue& components;
  Catalogue& library;
};
inline Catalogues OwnCatalogues() { return {coreFX, orvelFX, coBA, appLib}; }

// Records `value` under `key`, unless the key is there already.
ORVEL_EXPORT void insertItem(Catalogue& table, const std::string& key, const std::string& value);

// Tells whether `key` is in the table, and logs the path found under it.
ORVEL_EXPORT bool isExistInList(const Catalogue& table, const std::string& key);

#endif
