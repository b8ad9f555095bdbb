// Names and numbers of what a check found.
#include "orvelbox/check/result.h"

#include <algorithm>

namespace orvelbox {

const char* ToString(Verdict verdict) {
  switch (verdict) {
    case Verdict::kReportedOnly:
      return "reported";
    case Verdict::kRemoved:
      return "removed";
    default:
      return "kept";
  }
}

std::size_t CountOf(const CheckedPackage& package, Verdict verdict) {
  return static_cast<std::size_t>(std::count_if(package.dlls.begin(), package.dlls.end(),
                                                [&](const CheckedDll& dll) { return dll.verdict == verdict; }));
}

std::size_t CountDuplicates(const CheckedPackage& package) {
  return package.dlls.size() - CountOf(package, Verdict::kKept);
}

}  // namespace orvelbox
