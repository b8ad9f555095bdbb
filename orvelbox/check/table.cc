// The table of a check.
#include "orvelbox/check/formats.h"
#include "orvelbox/desk/text_table.h"

namespace orvelbox {
namespace {

std::string Headline(const CheckedPackage& package) {
  const std::string name = WithVersion(package.id, package.version);
  if (package.dlls.empty()) return package.name + ": " + name + ": no DLLs";
  return package.name + ": " + name + ": of " + std::to_string(package.dlls.size()) + " DLLs " +
         std::to_string(CountOf(package, Verdict::kRemoved)) + " would be removed, " +
         std::to_string(CountOf(package, Verdict::kReportedOnly)) + " reported but kept (read-write area), " +
         std::to_string(CountOf(package, Verdict::kKept)) + " kept";
}

std::string SizeOf(const DllCopy& copy) { return copy.size ? std::to_string(*copy.size) : ""; }

std::string VersionOf(const DllCopy& copy) { return copy.version ? ToString(*copy.version) : ""; }

std::string BecauseOf(const CheckedDll& dll) {
  if (dll.reason.empty()) return dll.origin;
  return "(" + dll.reason + ")";
}

void AddTable(const CheckedPackage& package, Lines& lines) {
  if (package.dlls.empty()) return;
  TextTable table({"VERDICT", "DLL", "SIZE", "VERSION", "ITS SIZE", "ITS VERSION", "BECAUSE OF"});
  for (const CheckedDll& dll : package.dlls) {
    table.Add({ToString(dll.verdict), dll.path, SizeOf(dll.own), VersionOf(dll.own), SizeOf(dll.provided),
               VersionOf(dll.provided), BecauseOf(dll)});
  }
  for (const std::string& line : table.Render()) lines.push_back("    " + line);
}

void AddWarnings(const CheckedPackage& package, Lines& lines) {
  for (const CheckedDll& dll : package.dlls) {
    if (!dll.IsDuplicate() || !dll.IsNewer()) continue;
    lines.push_back("    warning: " + dll.path + " (" + ToString(*dll.own.version) +
                    ") is newer than the copy that decides (" + ToString(*dll.provided.version) +
                    "); by its name it is a duplicate all the same");
  }
}

void AddProjectLines(const CheckedPackage& package, Lines& lines) {
  const Lines project = ProjectLines(package);
  if (project.empty()) return;
  lines.push_back("    To keep them out of the package, put this into the project file, inside of <Project>:");
  for (const std::string& line : project) lines.push_back("      " + line);
}

}  // namespace

Lines DescribeCheck(const CheckedPackage& package) {
  Lines lines = {Headline(package)};
  if (!package.dotnet) {
    lines.push_back("    the plug-in leaves the package alone: it has no application of a \"dotnet-\" type");
  }
  AddTable(package, lines);
  AddWarnings(package, lines);
  if (package.debugging && CountDuplicates(package) > 0) {
    lines.push_back(
        "    Its install would fail: it is under debugging (it holds the app-debugging privilege), and such "
        "a package may have no duplicates");
  }
  AddProjectLines(package, lines);
  return lines;
}

}  // namespace orvelbox
