// Lines of a .NET project file.
#include <filesystem>
#include <set>

#include "orvelbox/check/formats.h"
#include "orvelbox/desk/xml.h"
#include "platform/host/paths.h"
#include "platform/host/percent_encoding.h"

namespace orvelbox {
namespace {

// Within the quotes of a condition, these have a meaning of their own.
std::string ConditionText(const std::string& text) {
  constexpr std::string_view kMeaningful = "%'$@";
  return XmlEscaped(host::PercentEncoded(text, [&](char c) { return kMeaningful.find(c) == std::string_view::npos; }));
}

// The names of the DLLs without ".dll".
std::set<std::string> ProvidedElsewhere(const CheckedPackage& package) {
  std::set<std::string> names;
  for (const CheckedDll& dll : package.dlls) {
    if (dll.IsDuplicate() && !host::IsBelow(dll.origin, package.root))
      names.insert(std::filesystem::path(dll.path).stem().string());
  }
  return names;
}

}  // namespace

Lines ProjectLines(const CheckedPackage& package) {
  const std::set<std::string> names = ProvidedElsewhere(package);
  if (names.empty()) return {};
  Lines lines = {"<!-- DLLs that come with a package of their name -->", "<ItemGroup>"};
  for (const std::string& name : names) {
    lines.push_back("  <PackageReference Update=\"" + XmlEscaped(name) + "\" ExcludeAssets=\"runtime\" />");
  }
  lines.insert(lines.end(), {"</ItemGroup>", "<!-- DLLs that come in any other way -->",
                             "<Target Name=\"LeaveProvidedAssembliesOut\" AfterTargets=\"ResolveAssemblyReferences\">",
                             "  <ItemGroup>"});
  for (const std::string& name : names) {
    lines.push_back("    <ReferenceCopyLocalPaths Remove=\"@(ReferenceCopyLocalPaths)\"");
    lines.push_back("        Condition=\"'%(Filename)%(Extension)' == '" + ConditionText(name) + ".dll'\" />");
  }
  lines.insert(lines.end(), {"  </ItemGroup>", "</Target>"});
  return lines;
}

}  // namespace orvelbox
