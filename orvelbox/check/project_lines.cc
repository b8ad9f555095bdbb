// Lines of a .NET project file.
#include "orvelbox/check/project_lines.h"

#include <filesystem>
#include <set>

#include "orvelbox/desk/paths.h"

namespace orvelbox {
namespace {

std::string XmlText(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

// Within the quotes of a condition, these have a meaning of their own.
std::string ConditionText(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '%':
        escaped += "%25";
        break;
      case '\'':
        escaped += "%27";
        break;
      case '$':
        escaped += "%24";
        break;
      case '@':
        escaped += "%40";
        break;
      default:
        escaped += c;
    }
  }
  return XmlText(escaped);
}

// The names of the DLLs without ".dll".
std::set<std::string> ProvidedElsewhere(const CheckedPackage& package) {
  std::set<std::string> names;
  for (const CheckedDll& dll : package.dlls) {
    if (dll.IsDuplicate() && !IsBelow(dll.origin, package.root))
      names.insert(std::filesystem::path(dll.path).stem().string());
  }
  return names;
}

}  // namespace

std::vector<std::string> ProjectLines(const CheckedPackage& package) {
  const std::set<std::string> names = ProvidedElsewhere(package);
  if (names.empty()) return {};
  std::vector<std::string> lines = {"<!-- DLLs that come with a package of their name -->", "<ItemGroup>"};
  for (const std::string& name : names) {
    lines.push_back("  <PackageReference Update=\"" + XmlText(name) + "\" ExcludeAssets=\"runtime\" />");
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
