// The four catalogues of assemblies: which file names are already provided, and where. Filling them is in
// assembly_cache.h, judging by them in duplicate_policy.h.
#ifndef PLUGIN_CATALOGUES_H_
#define PLUGIN_CATALOGUES_H_

#include <map>
#include <string>

#include "morvath/export.h"

// Bare file name -> full path of the first file of that name.
using Catalogue = std::map<std::string, std::string>;

// The plug-in's own catalogues. Entries are only added while the library is loaded.
ORVEL_EXPORT extern Catalogue coreFX;   // the core runtime
ORVEL_EXPORT extern Catalogue orvelFX;  // the platform framework
ORVEL_EXPORT extern Catalogue coBA;     // CoBA components
ORVEL_EXPORT extern Catalogue appLib;   // the packages' own lib directories

// One set of catalogues. It does not own them.
struct Catalogues {
  Catalogue& core;
  Catalogue& framework;
  Catalogue& components;
  Catalogue& library;
};
inline Catalogues OwnCatalogues() { return {coreFX, orvelFX, coBA, appLib}; }

// Adds `value` under `key`, unless the table has the key already.
ORVEL_EXPORT void insertItem(Catalogue& table, const std::string& key, const std::string& value);

// Returns whether the table has `key`, and logs the path stored under it.
ORVEL_EXPORT bool isExistInList(const Catalogue& table, const std::string& key);

#endif
