// The symbol tables of built files, and the lists of their expected symbols.
#ifndef TESTS_ABI_SYMBOLS_H_
#define TESTS_ABI_SYMBOLS_H_

#include <string>

#include "tests/abi/names.h"

namespace abi_guard {

// A library, its object files and its expected symbols.
struct Library {
  std::string name;
  std::string file;
  std::string list;     // the file with the expected names
  std::string objects;  // the file with the names of its object files
};

// The names of the list.
Names Listed(const Library& library);

// The definitions with default visibility in the library's object files.
struct Definitions {
  Names strong;
  Names weak;  // instantiated templates; with some compilers also tables and type information of classes
};
Definitions Defined(const Library& library);

// The mangled names of the prototypes that `source` refers to.
Names Mentioned(const std::string& source);

}  // namespace abi_guard

#endif
