// The results of a check as lines of MSBuild's log: "FILE: warning CODE: text". docs/build-time.md explains the codes.
#include "base/affix.h"
#include "orvelbox/check/result.h"

namespace orvelbox {
namespace {

constexpr const char* kRemovedCode = "ORVEL1001";
constexpr const char* kReportedCode = "ORVEL1002";
constexpr const char* kUnreadableCode = "ORVEL1003";

// Most problems name the package first.
std::string ProblemOf(const CheckedPackage& package) {
  const std::string named = package.name + ": ";
  return HasPrefix(package.problem, named) ? package.problem.substr(named.size()) : package.problem;
}

}  // namespace

void WriteMsbuild(const CheckedPackage& package, const TakeLine& take) {
  if (!package.problem.empty()) return take(package.name + ": error " + kUnreadableCode + ": " + ProblemOf(package));
  const std::string level = package.debugging ? ": error " : ": warning ";
  for (const CheckedDll& dll : package.dlls) {
    if (!dll.IsDuplicate()) continue;
    const char* const code = dll.verdict == Verdict::kRemoved ? kRemovedCode : kReportedCode;
    take(FileOf(package, dll) + level + code + ": " + MessageAbout(package, dll));
  }
}

}  // namespace orvelbox
