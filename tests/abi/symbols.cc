// Reading symbol tables through readelf.
#include "tests/abi/symbols.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <vector>

#include "tests/support/command.h"
#include "tests/support/files.h"

namespace abi_guard {
namespace {

struct Symbol {
  std::string binding;
  std::string visibility;
  std::string section;
  std::string name;
};

bool StartsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// The global symbols in `table`, an option of readelf, without versions and without what a sanitizer adds.
std::vector<Symbol> Symbols(const std::string& table, const std::string& file) {
  std::vector<Symbol> symbols;
  for (const std::string& line : Lines(support::OutputOf(READELF_PROGRAM " --wide " + table + " '" + file + "'"))) {
    std::istringstream columns(line);
    std::string number, value, size, type;
    Symbol symbol;
    columns >> number >> value >> size >> type >> symbol.binding >> symbol.visibility >> symbol.section >> symbol.name;
    const bool global = symbol.binding == "GLOBAL" || symbol.binding == "WEAK";
    if (!columns || !global || StartsWith(symbol.name, "__odr_asan")) continue;
    symbol.name.resize(std::min(symbol.name.find('@'), symbol.name.size()));
    symbols.push_back(symbol);
  }
  return symbols;
}

// The hooks, what lies in no namespace, and the metadata keys: anything else is a library's that the headers use.
bool IsOwn(const std::string& name) {
  const bool global = name.size() > 2 && StartsWith(name, "_Z") && std::isdigit(static_cast<unsigned char>(name[2]));
  return global || StartsWith(name, "PKGMGR_PARSER_PLUGIN_") || StartsWith(name, "_ZN11MetadataKey");
}

}  // namespace

Names Listed(const Library& library) {
  Names names;
  for (const std::string& line : Lines(support::ReadFile(library.list))) {
    if (!line.empty() && line.front() != '#') names.insert(line);
  }
  return names;
}

Names Shown(const Library& library) {
  Names names;
  for (const Symbol& symbol : Symbols("--dyn-syms", library.file)) {
    if (symbol.section != "UND") names.insert(symbol.name);
  }
  return names;
}

Definitions Defined(const Library& library) {
  Definitions defined;
  for (const std::string& object : Lines(support::ReadFile(library.objects))) {
    for (const Symbol& symbol : Symbols("--symbols", object)) {
      if (symbol.section == "UND" || symbol.visibility != "DEFAULT") continue;
      (symbol.binding == "GLOBAL" ? defined.strong : defined.weak).insert(symbol.name);
    }
  }
  return defined;
}

Names Mentioned(const std::string& source) {
  Names names;
  for (const std::string& object : Lines(support::ReadFile(OBJECT_LISTS "/prototype_objects.txt"))) {
    if (object.find(source) == std::string::npos) continue;
    for (const Symbol& symbol : Symbols("--symbols", object)) {
      if (symbol.section == "UND" && IsOwn(symbol.name)) names.insert(symbol.name);
    }
  }
  return names;
}

}  // namespace abi_guard
