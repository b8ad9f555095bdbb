// The lines that keep duplicates out of a package, for its project file.
#include <filesystem>
#include <set>

#include "orvelbox/check/result.h"
#include "orvelbox/desk/xml.h"
#include "platform/host/paths.h"
#include "platform/host/percent_encoding.h"

namespace orvelbox {
namespace {

// In attributes of a project file, these have a meaning of their own.
std::string AttributeText(const std::string& text) {
  constexpr std::string_view kMeaningful = "%'$@;*?";
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

void WriteProjectLines(const CheckedPackage& package, const TakeLine& take) {
  const std::set<std::string> names = ProvidedElsewhere(package);
  if (names.empty()) return;
  take("<!-- DLLs that come with a package of their name -->");
  take("<ItemGroup>");
  for (const std::string& name : names) {
    take("  <PackageReference Update=\"" + AttributeText(name) + "\" ExcludeAssets=\"runtime\" />");
  }
  for (const char* line :
       {"</ItemGroup>", "<!-- DLLs that come in any other way -->",
        "<Target Name=\"LeaveProvidedAssembliesOut\" AfterTargets=\"ResolveAssemblyReferences\">", "  <ItemGroup>"}) {
    take(line);
  }
  for (const std::string& name : names) {
    take("    <ReferenceCopyLocalPaths Remove=\"@(ReferenceCopyLocalPaths)\"");
    take("        Condition=\"'%(Filename)%(Extension)' == '" + AttributeText(name) + ".dll'\" />");
  }
  take("  </ItemGroup>");
  take("</Target>");
}

}  // namespace orvelbox
