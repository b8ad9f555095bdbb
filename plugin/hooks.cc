// The eight hooks, at the end of the file in the order of a package's lifecycle. Each decides whether the package
// concerns the plug-in and calls the assembly cache pass or the cache file operations.
#include "plugin/hooks.h"

#include <cstdio>

#include "orvel/aul.h"
#include "plugin/assembly_cache.h"
#include "plugin/cache_files.h"
#include "plugin/log_source.h"
#include "plugin/manifest.h"
#include "quarnel_util/quarnel_util.h"
#include "util/privilege_checker.h"

std::map<std::string, bool> cacheStateUninstall;
std::map<std::string, bool> aotStateUpgrade;

namespace {

constexpr const char* kCandidateLoader = "dotnet-loader-inhouse";

// For messages that are printed before a null id throws.
const char* Printable(const char* pkgId) { return pkgId == nullptr ? "(null)" : pkgId; }

void RemoveFromCacheAndRestart(const char* pkgId) {
  if (removedPkgFromTPACacheFile(pkgId)) restartDotnetCandidateProcess();
}

}  // namespace

void restartDotnetCandidateProcess() {
  FunctionEntryExitTracker tracker("void restartDotnetCandidateProcess()", kLogSource.unit, __LINE__);
  if (aul_restart_loader(kCandidateLoader) != 0) LOG_ERROR(LOG_TEXT_RESTART_FAILED);
}

int PKGMGR_PARSER_PLUGIN_INSTALL(xmlDocPtr doc, const char* pkgId) {
  FunctionEntryExitTracker tracker("int PKGMGR_PARSER_PLUGIN_INSTALL(xmlDocPtr, const char*)", kLogSource.unit,
                                   __LINE__);
  if (!isAppDotnetInhouse(doc)) {
    LOG_INFO(LOG_TEXT_NOT_INHOUSE);
    std::fprintf(stderr, "### INSTALL : morvath, skip gac. it's not dotnet-inhouse app : %s\n", Printable(pkgId));
    return 0;
  }
  std::fprintf(stderr, "### INSTALL : morvath : %s\n", Printable(pkgId));
  if (gac(pkgId) >= 0 || !isInDebuggingState(pkgId)) return 0;
  LOG_ERROR(LOG_TEXT_GUIDE "%s", ORVEL_GUIDE_URL);
  return -1;
}

int PKGMGR_PARSER_PLUGIN_UPGRADE(xmlDocPtr doc, const char* pkgId) {
  FunctionEntryExitTracker tracker("int PKGMGR_PARSER_PLUGIN_UPGRADE(xmlDocPtr, const char*)", kLogSource.unit,
                                   __LINE__);
  aotStateUpgrade[pkgId] = true;
  return PKGMGR_PARSER_PLUGIN_INSTALL(doc, pkgId);
}

int PKGMGR_PARSER_PLUGIN_REMOVED(xmlDocPtr doc, const char* pkgId) {
  FunctionEntryExitTracker tracker("int PKGMGR_PARSER_PLUGIN_REMOVED(xmlDocPtr, const char*)", kLogSource.unit,
                                   __LINE__);
  return PKGMGR_PARSER_PLUGIN_UPGRADE(doc, pkgId);
}

int PKGMGR_PARSER_PLUGIN_UNINSTALL(xmlDocPtr doc, const char* pkgId) {
  FunctionEntryExitTracker tracker("int PKGMGR_PARSER_PLUGIN_UNINSTALL(xmlDocPtr, const char*)", kLogSource.unit,
                                   __LINE__);
  if (!isAppDotnetInhouse(doc)) {
    LOG_INFO(LOG_TEXT_NOT_INHOUSE);
    return 0;
  }
  cacheStateUninstall[pkgId] = true;
  if (!getRootPath(pkgId).empty()) RemoveFromCacheAndRestart(pkgId);
  return 0;
}

int PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL(xmlDocPtr, const char* pkgId) {
  FunctionEntryExitTracker tracker("int PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL(xmlDocPtr, const char*)", kLogSource.unit,
                                   __LINE__);
  RemoveFromCacheAndRestart(pkgId);
  return 0;
}

int PKGMGR_PARSER_PLUGIN_CLEAN(xmlDocPtr doc, const char* pkgId) {
  FunctionEntryExitTracker tracker("int PKGMGR_PARSER_PLUGIN_CLEAN(xmlDocPtr, const char*)", kLogSource.unit, __LINE__);
  if (!isAppDotnetInhouse(doc)) {
    LOG_INFO(LOG_TEXT_NOT_INHOUSE);
    return 0;
  }
  if (cacheStateUninstall[pkgId]) return 0;
  if (isAppCoBARelated(doc)) {
    addPkgToTPACacheFile(pkgId);
    restartDotnetCandidateProcess();
  } else if (aotStateUpgrade[pkgId]) {
    RemoveFromCacheAndRestart(pkgId);
  }
  return 0;
}

int PKGMGR_PARSER_PLUGIN_CLEANUP(xmlDocPtr doc, const char* pkgId) {
  FunctionEntryExitTracker tracker("int PKGMGR_PARSER_PLUGIN_CLEANUP(xmlDocPtr, const char*)", kLogSource.unit,
                                   __LINE__);
  if (getRootPath(pkgId).empty()) return 0;
  aotStateUpgrade[pkgId] = true;
  return PKGMGR_PARSER_PLUGIN_CLEAN(doc, pkgId);
}

int PKGMGR_PARSER_PLUGIN_UNDO(xmlDocPtr doc, const char*) {
  FunctionEntryExitTracker tracker("int PKGMGR_PARSER_PLUGIN_UNDO(xmlDocPtr, const char*)", kLogSource.unit, __LINE__);
  if (!isAppDotnetInhouse(doc)) LOG_INFO(LOG_TEXT_NOT_INHOUSE);
  return 0;
}
