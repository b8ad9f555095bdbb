// The package in a path.
#include "orvelbox/history/log_findings.h"

#include <string_view>

namespace orvelbox {

std::string PackageRootIn(const std::string& path) {
  constexpr std::string_view kArea = "apps/";
  for (std::size_t at = path.find(kArea); at != std::string::npos; at = path.find(kArea, at + 1)) {
    const std::size_t begin = at + kArea.size();
    const std::size_t area = path.rfind('/', at);
    const std::size_t end = path.find('/', begin);
    if (area == std::string::npos || end == std::string::npos || end == begin) continue;
    // The id of a package has a dot, and may end like that.
    if (path.find('.', area) >= at) return path.substr(0, end);
  }
  return "";
}

}  // namespace orvelbox
