// The entry points that the package manager calls, their flag tables and the loader restart.
#ifndef PLUGIN_HOOKS_H_
#define PLUGIN_HOOKS_H_

#include <libxml/tree.h>

#include <map>
#include <string>

#include "morvath/export.h"

// What earlier events said of a package id. As long as the library is loaded nothing is set back; reading an unknown id
// leaves a false entry. cacheStateUninstall: it is being uninstalled, CLEAN leaves the cache files alone.
// aotStateUpgrade: it went through an upgrade or clean-up, CLEAN takes it out of the cache files.
ORVEL_EXPORT extern std::map<std::string, bool> cacheStateUninstall;
ORVEL_EXPORT extern std::map<std::string, bool> aotStateUpgrade;

// Asks the platform to restart the candidate loader, so that it reads the cache files again; a failure is logged.
ORVEL_EXPORT void restartDotnetCandidateProcess();

// All hooks: `doc` is the package's manifest (may be null; only read), `pkgId` its id. The package manager calls them
// one at a time. They return 0, and only INSTALL (with UPGRADE and REMOVED, which forward to it) may return -1. Gated
// ones ask isAppDotnetInhouse first, and say so and do nothing else where it denies. The exceptions that leave them are
// the standard library's own: std::logic_error for a null id where one is needed, std::bad_alloc when memory runs out.
// What was done by then stays done, and the next call finds sound tables and files.
extern "C" {
// Gated. Runs the assembly cache pass, which removes the package's DLLs that duplicate others; -1 when that found any,
// or no root, and the package is under debugging.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_INSTALL(xmlDocPtr doc, const char* pkgId);
// Marks the package as upgraded, whatever its kind, then does what INSTALL does.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_UPGRADE(xmlDocPtr doc, const char* pkgId);
// Does what UPGRADE does.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_REMOVED(xmlDocPtr doc, const char* pkgId);
// Gated. Marks the package as uninstalling and takes it out of the cache files.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_UNINSTALL(xmlDocPtr doc, const char* pkgId);
// Takes the package out of the cache files, whatever its kind: not gated.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL(xmlDocPtr doc, const char* pkgId);
// Gated. Ends an operation: adds a CoBA-related package to the cache files, takes an upgraded other one out of them;
// one that is being uninstalled is left alone.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_CLEAN(xmlDocPtr doc, const char* pkgId);
// Marks a package that has a root as upgraded, whatever its kind, then does what CLEAN does; without one does nothing.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_CLEANUP(xmlDocPtr doc, const char* pkgId);
// Gated. Changes nothing.
ORVEL_EXPORT int PKGMGR_PARSER_PLUGIN_UNDO(xmlDocPtr doc, const char* pkgId);
}

#endif
