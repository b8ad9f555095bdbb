// The symbols of built files, from readelf.
#ifndef TESTS_SUPPORT_SYMBOLS_H_
#define TESTS_SUPPORT_SYMBOLS_H_

#include <set>
#include <string>
#include <vector>

namespace support {

using Names = std::set<std::string>;

// The output of readelf about the file.
std::string Readelf(const std::string& options, const std::string& file);

struct Symbol {
  std::string binding;
  std::string visibility;
  std::string section;
  std::string name;
};

// The global symbols in `table`, an option of readelf, without versions and without those of sanitizers.
std::vector<Symbol> Symbols(const std::string& table, const std::string& file);

// The names that a library or program imports, and those that it exports.
Names Imports(const std::string& file);
Names Exports(const std::string& file);

}  // namespace support

#endif
