// The texts about a removed DLL.
#ifndef TESTS_SUPPORT_REMOVAL_TEXTS_H_
#define TESTS_SUPPORT_REMOVAL_TEXTS_H_

#include <string>

namespace support {

// The content of the information file.
inline std::string InformationText(const std::string& origin, const std::string& duplicated) {
  return duplicated + " was deleted because " + origin + " exists\nRemove " + duplicated + " from OPK\n";
}

// The line on standard error.
inline std::string DuplicateLine(const std::string& origin, const std::string& duplicated) {
  return "### Duplicated DLL found!!! Please remove duplicated dll ### Origin : " + origin +
         ", Duplicated : " + duplicated + "\n";
}

}  // namespace support

#endif
