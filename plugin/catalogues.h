// The four catalogues of assemblies: which file names are already provided, and where. Filling them and judging by
// them is done elsewhere.
#ifndef PLUGIN_CATALOGUES_H_
#define PLUGIN_CATALOGUES_H_

#include <map>
#include <string>

#include "morvath/export.h"

// Bare file name -> full path of the first file of that name. The tables only grow while the library is loaded.
ORVEL_EXPORT extern std::map<std::string, std::string> coreFX;   // the core runtime
ORVEL_EXPORT extern std::map<std::string, std::string> orvelFX;  // the platform framework
ORVEL_EXPORT extern std::map<std::string, std::string> coBA;     // CoBA components
ORVEL_EXPORT extern std::map<std::string, std::string> appLib;   // the packages' own lib directories

// Records `value` under `key`, unless the key is there already.
ORVEL_EXPORT void insertItem(std::map<std::string, std::string>& table, const std::string& key,
                             const std::string& value);

// Tells whether `key` is in the table, and logs the path found under it.
ORVEL_EXPORT bool isExistInList(const std::map<std::string, std::string>& table, const std::string& key);

#endif
