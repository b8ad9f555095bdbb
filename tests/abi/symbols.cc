// Reads names from lists and object files.
#include "tests/abi/symbols.h"

#include <cctype>

#include "tests/support/files.h"

namespace abi_guard {

using support::Lines;
using support::Symbol;
using support::Symbols;

namespace {

// The hooks, functions outside of namespaces, and the metadata keys. All other symbols come from other libraries'
// headers.
bool IsOwn(const std::string& name) {
  const bool global = name.rfind("_Z", 0) == 0 && name.size() > 2 && std::isdigit(static_cast<unsigned char>(name[2]));
  return global || name.rfind("PKGMGR_PARSER_PLUGIN_", 0) == 0 || name.rfind("_ZN11MetadataKey", 0) == 0;
}

}  // namespace

Names Listed(const Library& library) {
  Names names;
  for (const std::string& line : Lines(support::ReadFile(library.list))) {
    if (!line.empty() && line.front() != '#') names.insert(line);
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
