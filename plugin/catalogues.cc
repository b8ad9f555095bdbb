// The catalogues and the two operations on them.
#include "plugin/catalogues.h"

#include "plugin/log_source.h"

std::map<std::string, std::string> coreFX;
std::map<std::string, std::string> orvelFX;
std::map<std::string, std::string> coBA;
std::map<std::string, std::string> appLib;

void insertItem(std::map<std::string, std::string>& table, const std::string& key, const std::string& value) {
  table.emplace(key, value);
}

bool isExistInList(const std::map<std::string, std::string>& table, const std::string& key) {
  const auto entry = table.find(key);
  if (entry == table.end()) return false;
  LOG_DEBUG("Found %s", entry->second.c_str());
  return true;
}
