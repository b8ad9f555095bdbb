// Parses readelf's output.
#include "tests/support/symbols.h"

#include <algorithm>
#include <sstream>

#include "tests/support/command.h"
#include "tests/support/files.h"

namespace support {

namespace {

Names DynamicNames(const std::string& file, bool imported) {
  Names names;
  for (const Symbol& symbol : Symbols("--dyn-syms", file)) {
    if ((symbol.section == "UND") == imported) names.insert(symbol.name);
  }
  return names;
}

}  // namespace

std::string Readelf(const std::string& options, const std::string& file) {
  return OutputOf(READELF_PROGRAM " --wide " + options + " " + Quoted(file));
}

std::vector<Symbol> Symbols(const std::string& table, const std::string& file) {
  std::vector<Symbol> symbols;
  for (const std::string& line : Lines(Readelf(table, file))) {
    std::istringstream columns(line);
    std::string number, value, size, type;
    Symbol symbol;
    columns >> number >> value >> size >> type >> symbol.binding >> symbol.visibility >> symbol.section >> symbol.name;
    const bool global = symbol.binding == "GLOBAL" || symbol.binding == "WEAK";
    if (!columns || !global || symbol.name.rfind("__odr_asan", 0) == 0) continue;
    symbol.name.resize(std::min(symbol.name.find('@'), symbol.name.size()));
    symbols.push_back(symbol);
  }
  return symbols;
}

Names Imports(const std::string& file) { return DynamicNames(file, true); }

Names Exports(const std::string& file) { return DynamicNames(file, false); }

}  // namespace support
