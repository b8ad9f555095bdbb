// The catalogues and the two operations on them.
#include "plugin/catalogues.h"

#include "plugin/log_source.h"

Catalogue coreFX;
Catalogue orvelFX;
Catalogue coBA;
Catalogue appLib;

void insertItem(Catalogue& table, const std::string& key, const std::string& value) { table.emplace(key, value); }

bool isExistInList(const Catalogue& table, const std::string& key) {
  const auto entry = table.find(key);
  if (entry == table.end()) return false;
  LOG_DEBUG("Found %s", entry->second.c_str());
  return true;
}
