// Building blocks of expected journals.
#include "tests/support/expected_lines.h"

#include "tests/support/uris.h"

namespace unit {

using doubles::Join;
using doubles::Traced;

namespace {

constexpr const char* kHasPrivilege = "bool HasPrivilege(const std::string&, const std::string&)";

}  // namespace

doubles::Package CobaPackage(const std::string& id, const std::string& root) {
  doubles::Package package = doubles::MakePackage(id, root);
  package.applications[0].metadata = {{support::kCobaKey, "true"}};
  return package;
}

Source Plugin(const std::string& function) { return Source("morvath", function); }

Steps TracedPlugin(const std::string& signature, const Steps& inside) { return Traced("morvath", signature, inside); }

Steps TracedPlugin(const std::string& signature, std::initializer_list<Steps> inside) {
  return Traced("morvath", signature, inside);
}

Steps Hook(const std::string& event, std::initializer_list<Steps> inside) {
  return TracedPlugin("int PKGMGR_PARSER_PLUGIN_" + event + "(xmlDocPtr, const char*)", inside);
}

Steps Names(const std::vector<std::string>& names) {
  Steps steps;
  for (const std::string& name : names) {
    steps = Join({steps, Plugin("isAppDotnetInhouse").Debug("name %s", name)});
  }
  return steps;
}

Steps DotnetWalk() {
  return Join({Names({"manifest", "ui-application"}), Plugin("isAppDotnetInhouse").Info("App is dotnet-*")});
}

Steps OtherWalk() { return Names({"manifest", "ui-application", "manifest"}); }

Steps CobaWalk(const Steps& inside) { return TracedPlugin("bool isAppCoBARelated(xmlDocPtr)", inside); }

Steps LocalNames(const std::vector<std::string>& names) {
  Steps steps;
  for (const std::string& name : names) {
    steps = Join({steps, Plugin("isAppCoBARelated").Debug("Local name %s", name)});
  }
  return steps;
}

Steps CobaFound() {
  const Source matcher("metadata_utils", "isMetadataInfoHasKey");
  const std::string key = support::kCobaKey;
  return CobaWalk(Join({LocalNames({"manifest", "ui-application", "metadata"}),
                        matcher.Debug("%s compare to %s, value : %s", key, "true", key),
                        matcher.Debug("%s matched", key), Plugin("isAppCoBARelated").Info("App has CoBA metadata")}));
}

Steps NoCobaFound() { return CobaWalk(LocalNames({"manifest", "ui-application", "manifest"})); }

Steps NotInhouse(const std::string& event) {
  return Plugin("PKGMGR_PARSER_PLUGIN_" + event).Info("### App type is not dotnet-inhouse ###");
}

Steps NoPrivilege() { return Traced("privilege_checker", kHasPrivilege, Steps{}); }

Steps HavePrivilege(const std::string& privilege) {
  return Traced("privilege_checker", kHasPrivilege,
                Source("privilege_checker", "privilege_info_cb").Info("### Have %s privilege ###", privilege));
}

Steps PassOverPlatform(std::size_t core_size, std::size_t framework_size) {
  const Source gac = Plugin("gac");
  return Join({TracedPlugin("bool HasPlatformPrivilege(const std::string&)", NoPrivilege()),
               gac.Debug("This package does not have platform privilege. So skip tvappapi path"),
               TracedPlugin("void getPackageByMetadataTag(pkgmgrinfo_app_list_cb, const std::string&)", Steps{}),
               gac.Debug("coreFX  size = %zu", core_size), gac.Debug("orvelFX size = %zu", framework_size)});
}

Steps Pass(std::size_t core_size, std::size_t framework_size, const Steps& walk) {
  return TracedPlugin("int gac(const std::string&)", {PassOverPlatform(core_size, framework_size), walk});
}

Steps NotDpc() { return TracedPlugin("bool isDPCDll(const std::string&)", Steps{}); }

Steps Dpc(const std::string& path) {
  return Join({TracedPlugin("bool isDPCDll(const std::string&)", Plugin("isDPCDll").Debug("Is DPC DLL %s\n", path)),
               Plugin("isDuplicatedDll").Debug("Is DPC DLL %s\n", path)});
}

Steps Compared(const std::string& origin, const std::string& duplicated, const Steps& inside) {
  return TracedPlugin(
      "bool isDuplicatedDll(const std::string&, const std::string&)",
      {Plugin("isDuplicatedDll").Debug("### Duplicated Checker ### Origin : %s, Duplicated : %s", origin, duplicated),
       inside});
}

Steps RemovalFrame(const Steps& inside) {
  return TracedPlugin("void removeFileAndLeaveInformationFile(const std::string&, const std::string&)", inside);
}

Steps DuplicateRemoved(const std::string& origin, const std::string& duplicated) {
  const Source source = Plugin("isDuplicatedDll");
  const Steps told = Join({NotDpc(), NotDpc(), source.Error("### Duplicated DLL found ###"),
                           source.Error("Origin : %s", origin), source.Error("Duplicated : %s", duplicated)});
  return Join({Plugin("isExistInList").Debug("Found %s", origin), Compared(origin, duplicated, told), RemovalFrame()});
}

Steps ComparedWithItself(const std::string& path) {
  return Join({Plugin("isExistInList").Debug("Found %s", path), Compared(path, path, {})});
}

Steps Removing(std::initializer_list<Steps> inside) {
  return Traced("morvath", "bool removedPkgFromTPACacheFile(const char*)", inside, 422);
}

Steps Adding(std::initializer_list<Steps> inside) {
  return Traced("morvath", "void addPkgToTPACacheFile(const char*)", inside, 448);
}

Steps CacheRead(const std::string& file, const std::vector<std::string>& erased, const std::string& left) {
  const Source source = Plugin("readCacheAndRemovePkg");
  Steps steps = source.At(396).Debug("access cache path: %s", file);
  for (const std::string& span : erased) {
    steps = Join({steps, source.At(412).Info("erase: %s from cache file: %s", span, file)});
  }
  steps = Join({steps, source.At(416).Debug("after erase: %s", left)});
  return Traced("morvath", "bool readCacheAndRemovePkg(std::string, std::string, std::string&)", steps, 381);
}

Steps CacheMissing(const std::string& file) {
  return Traced("morvath", "bool readCacheAndRemovePkg(std::string, std::string, std::string&)",
                Plugin("readCacheAndRemovePkg").At(392).Error("error access cache path: %s", file), 381);
}

Steps NotThereYet() {
  return Source("platform_utils", "isRealPath").Debug("File does not exist. No need to check symbolic links. ###");
}

Steps Saved(const std::string& target) {
  const Source source("platform_utils", "writeStringToFile");
  return Join(
      {NotThereYet(), NotThereYet(), source.At(173).Debug("Save File : %s", target), source.At(177).Debug("Saved")});
}

Steps LoaderRestarted() {
  return TracedPlugin("void restartDotnetCandidateProcess()", doubles::Restart("dotnet-loader-inhouse"));
}

}  // namespace unit
