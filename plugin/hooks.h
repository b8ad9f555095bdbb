// The entry points that the package manager calls, their flag tables and the loader restart.
#ifndef PLUGIN_HOOKS_H_
#define PLUGIN_HOOKS_H_

#include <libxml/tree.h>

#include <map>
#include <string>

#include "morvath/export.h"

// What earlier events recorded for a package id. Nothing is reset while the library is loaded. Reading an unknown id
// adds a false entry.
// cacheStateUninstall: the package is being uninstalled; CLEAN does not change the cache files.
// aotStateUpgrade: the package was upgraded or cleaned up; CLEAN removes it from the cache files.
ORVEL_EXPORT extern std::map<std::string, bool> cacheStateUninstall;
ORVEL_EXPORT extern std::map<std::string, bool> aotStateUpgrade;

// Asks the platform to restart the candidate loader, which then reads the cache files again. Logs a failure.
ORVEL_EXPORT void restartDotnetCandidateProcess();

// All hooks: `doc` is the package's manifest (may be null; it is only read), `pkgId` its id. The package manager calls
// them one at a time. They return 0; only INSTALL, and UPGRADE and REMOVED through it, may return -1. A gated hook
// first asks isAppDotnetInhouse; when the answer is no, it reports that and does nothing else. Two exceptions can leave
// a hook: std::logic_error for a null id, std::bad_alloc when memory runs out. The work done so far then stays, and
// tables and files are valid for the next call.
extern "C" {
// Gated. Runs the assembly cache pass, which removes the package's duplicate DLLs. Returns -1 when the pass found a
// duplicate or no root directory, and the package is under debugging.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_INSTALL(xmlDocPtr doc, const char* pkgId);
// Marks the package as upgraded, dotnet or not, then does what INSTALL does.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_UPGRADE(xmlDocPtr doc, const char* pkgId);
// Does what UPGRADE does.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_REMOVED(xmlDocPtr doc, const char* pkgId);
// Gated. Marks the package as being uninstalled and removes it from the cache files.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_UNINSTALL(xmlDocPtr doc, const char* pkgId);
// Not gated. Removes the package from the cache files.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL(xmlDocPtr doc, const char* pkgId);
// Gated. Ends an operation: adds a CoBA package to the cache files; removes any other package that was upgraded from
// them. Does not touch a package that is being uninstalled.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_CLEAN(xmlDocPtr doc, const char* pkgId);
// Without a root directory does nothing. Marks the package as upgraded, dotnet or not, then does what CLEAN does.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_CLEANUP(xmlDocPtr doc, const char* pkgId);
// Gated. Changes nothing.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_UNDO(xmlDocPtr doc, const char* pkgId);
}

#endif
