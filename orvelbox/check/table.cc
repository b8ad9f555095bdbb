// The results of a check in words: counts, the table.
#include <algorithm>
#include <filesystem>
#include <utility>

#include "orvelbox/check/result.h"

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
  return "(" + std::string(dll.reason) + ")";
}

std::string VersionIn(const DllCopy& copy) { return copy.version ? " (" + ToString(*copy.version) + ")" : ""; }

// Row by row into the same strings.
void FillRow(const CheckedDll& dll, TextTable::Row& row) {
  row[0] = ToString(dll.verdict);
  row[1] = dll.path;
  row[2] = SizeOf(dll.own);
  row[3] = VersionOf(dll.own);
  row[4] = SizeOf(dll.provided);
  row[5] = VersionOf(dll.provided);
  row[6] = BecauseOf(dll);
}

void DescribeDlls(const CheckedPackage& package, const TakeLine& take) {
  if (package.dlls.empty()) return;
  TextTable::Row row = {"VERDICT", "DLL", "SIZE", "VERSION", "ITS SIZE", "ITS VERSION", "BECAUSE OF"};
  TextTable table(row);
  for (const CheckedDll& dll : package.dlls) {
    FillRow(dll, row);
    table.Measure(row);
  }
  take("    " + table.Headings());
  for (const CheckedDll& dll : package.dlls) {
    FillRow(dll, row);
    take("    " + table.Line(row));
  }
}

void DescribeNewer(const CheckedPackage& package, const TakeLine& take) {
  for (const CheckedDll& dll : package.dlls) {
    if (!dll.IsDuplicate() || !dll.IsNewer()) continue;
    take("    warning: " + dll.path + " (" + ToString(*dll.own.version) + ") is newer than the copy that decides (" +
         ToString(*dll.provided.version) + "); by its name it is a duplicate all the same");
  }
}

void DescribeProjectLines(const CheckedPackage& package, const TakeLine& take) {
  bool begun = false;
  WriteProjectLines(package, [&](const std::string& line) {
    if (!std::exchange(begun, true)) {
      take("    To keep them out of the package, put this into the project file, inside of <Project>:");
    }
    take("      " + line);
  });
}

}  // namespace

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

std::string MessageAbout(const CheckedPackage& package, const CheckedDll& dll) {
  std::string text = dll.path + VersionIn(dll.own) + " duplicates " + dll.origin + VersionIn(dll.provided);
  text += dll.verdict == Verdict::kRemoved ? "; the install removes it." : "; the install reports it but keeps it.";
  if (dll.IsNewer()) text += " The package's copy is the newer one; by its name it is a duplicate all the same.";
  if (package.debugging) text += " The package is under debugging, so its install fails.";
  return text;
}

std::string FileOf(const CheckedPackage& package, const CheckedDll& dll) {
  std::error_code ignored;
  if (!std::filesystem::is_directory(package.name, ignored)) return package.name;
  return (std::filesystem::path(package.name) / dll.path).lexically_normal().string();
}

void DescribeCheck(const CheckedPackage& package, const TakeLine& take) {
  take(Headline(package));
  if (!package.dotnet) take(std::string("    ") + kLeftAlone);
  DescribeDlls(package, take);
  DescribeNewer(package, take);
  if (package.debugging && CountDuplicates(package) > 0) {
    take(
        "    Its install would fail: it is under debugging (it holds the app-debugging privilege), and such "
        "a package may have no duplicates");
  }
  DescribeProjectLines(package, take);
}

Level LevelOf(const CheckedPackage& package) {
  if (CountDuplicates(package) == 0) return Level::kNone;
  return package.debugging ? Level::kError : Level::kWarning;
}

}  // namespace orvelbox
