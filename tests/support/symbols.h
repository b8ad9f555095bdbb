// Built files as readelf tells of them.
#ifndef TESTS_SUPPORT_SYMBOLS_H_
#define TESTS_SUPPORT_SYMBOLS_H_

#include <set>
#include <string>
#include <vector>

namespace support {

using Names = std::set<std::string>;

// What readelf prints about the file.
std::string Readelf(const std::string& options, const std::string& file);

struct Symbol {
  std::string binding;
  std::string visibility;
  std::string section;
  std::string name;
};

// The global symbols in `table`, an option of readelf, without versions and without what a sanitizer adds.
std::vector<Symbol> Symbols(const std::string& table, const std::string& file);

// The names that a library or program takes from others, and those that others can take from it.
Names Imports(const std::string& file);
Names Exports(const std::string& file);

}  // namespace support

#endif
