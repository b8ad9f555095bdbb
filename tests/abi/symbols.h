// The symbol tables of built files, and the lists of what they should hold.
#ifndef TESTS_ABI_SYMBOLS_H_
#define TESTS_ABI_SYMBOLS_H_

#include <string>

#include "tests/abi/names.h"

namespace abi_guard {

// A library, what it is made of and what it should show.
struct Library {
  std::string name;
  std::string file;
  std::string list;     // the file with the names that it should show
  std::string objects;  // the file with the names of its object files
};

// The names of the list.
Names Listed(const Library& library);

// What the sources of the library mean to show: the definitions of default visibility in its object files.
struct Definitions {
  Names strong;
  Names weak;  // instantiated templates, and, by some compilers, tables and type information of classes
};
Definitions Defined(const Library& library);

// The names that the compiler made of the prototypes that `source` mentions.
Names Mentioned(const std::string& source);

}  // namespace abi_guard

#endif
