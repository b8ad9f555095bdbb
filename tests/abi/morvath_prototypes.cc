// The released functions and objects of libmorvath.so, except the members of its classes.
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "morvath/assembly_files.h"
#include "morvath/destination_paths.h"
#include "morvath/install_location.h"
#include "morvath/metadata_utils.h"
#include "morvath/package_queries.h"
#include "morvath/platform_utils.h"
#include "plugin/assembly_cache.h"
#include "plugin/cache_files.h"
#include "plugin/catalogues.h"
#include "plugin/duplicates.h"
#include "plugin/hooks.h"
#include "plugin/manifest.h"
#include "tests/abi/prototypes.h"
#include "util/privilege_checker.h"

using Text = std::string;
using Reader = std::function<void(const Text&, const Text&)>;

namespace abi_guard {

void MentionHooks() {
  using Hook = int(xmlDocPtr, const char*);
  Mention<Hook>(PKGMGR_PARSER_PLUGIN_INSTALL);
  Mention<Hook>(PKGMGR_PARSER_PLUGIN_UPGRADE);
  Mention<Hook>(PKGMGR_PARSER_PLUGIN_REMOVED);
  Mention<Hook>(PKGMGR_PARSER_PLUGIN_UNINSTALL);
  Mention<Hook>(PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL);
  Mention<Hook>(PKGMGR_PARSER_PLUGIN_CLEAN);
  Mention<Hook>(PKGMGR_PARSER_PLUGIN_CLEANUP);
  Mention<Hook>(PKGMGR_PARSER_PLUGIN_UNDO);
  Mention<std::map<Text, bool>>(cacheStateUninstall);
  Mention<std::map<Text, bool>>(aotStateUpgrade);
  Mention<void()>(restartDotnetCandidateProcess);
}

void MentionManifestAndMetadata() {
  Mention<bool(xmlDocPtr)>(isAppDotnetInhouse);
  Mention<bool(xmlDocPtr)>(isAppCoBARelated);
  Mention<const Text>(MetadataKey::coBA);
  Mention<const Text>(MetadataKey::viewPlugin);
  Mention<const Text>(MetadataKey::viewPluginPage);
  Mention<const Text>(MetadataKey::bpi);
  Mention<const Text>(MetadataKey::dpcRequired);
  Mention<const Text>(MetadataKey::dpcType);
  Mention<const Text>(MetadataKey::preferDotnetAot);
  Mention<const Text>(metadataValueTrue);
  Mention<const Text>(metadataValueDpcorvelfxtv);
  Mention<bool(Metadata*, Text)>(isMetadataInfoHasKey);
  Mention<bool(Metadata*)>(isDpcKey);
  Mention<bool(Metadata*)>(isPreferDotNETAOTKey);
  Mention<bool(Metadata*)>(isCobaKey);
}

void MentionPrivileges() {
  Mention<bool(const Text&, const Text&)>(HasPrivilege);
  Mention<bool(const Text&)>(isInDebuggingState);
  Mention<bool(const char*, void*)>(privilege_info_cb);
}

void MentionAssemblyCache() {
  using Table = std::map<Text, Text>;
  Mention<Table>(coreFX);
  Mention<Table>(orvelFX);
  Mention<Table>(coBA);
  Mention<Table>(appLib);
  Mention<void(Table&, const Text&, const Text&)>(insertItem);
  Mention<bool(const Table&, const Text&)>(isExistInList);
  Mention<void(const Text&, Reader, unsigned int)>(scanFilesInDirExcludeSymlink);
  Mention<void(const Text&, Reader)>(scanDirsInDirectory);
  Mention<int(const Text&)>(gac);
  Mention<bool(const Text&)>(HasPlatformPrivilege);
  Mention<void(int (*)(void*, void*), const Text&)>(getPackageByMetadataTag);
  Mention<int(void*, void*)>(cobaCallback);
}

void MentionDuplicates() {
  Mention<int(const Text&, const Text&)>(isUniqueDll);
  Mention<bool(const Text&, const Text&)>(isDuplicatedDll);
  Mention<bool(const Text&)>(isDPCDll);
  Mention<void(const Text&, const Text&)>(removeFileAndLeaveInformationFile);
  Mention<bool(const Text&)>(isRealPath);
  Mention<bool(const boost::filesystem::path&)>(exist);
}

void MentionCacheFiles() {
  Mention<void(Text, Text, Text)>(writeStringToFile);
  Mention<Text(Text)>(readFileToString);
  Mention<bool(Text, Text, Text&)>(readCacheAndRemovePkg);
  Mention<bool(const char*)>(removedPkgFromTPACacheFile);
  Mention<void(const char*)>(addPkgToTPACacheFile);
}

void MentionProbesAndQueries() {
  Mention<bool()>(isReleaseVersion);
  Mention<bool()>(isRunningInVARK);
  Mention<bool(const Text&)>(isRWInstalledApp);
  Mention<bool(const Text&)>(IsNeedToSkipAOT);
  Mention<bool(const Text&)>(IsNeedToSkipSAC);
  Mention<int(const Text&, void**)>(pkgmgrGetPkgInfo);
  Mention<bool(const Text&)>(isRPK);
  Mention<Text(const Text&)>(getPkgIdFromAppID);
  Mention<int(Text, Text&)>(getExecName);
  Mention<int(Text, Text, Text&)>(getMetadataValue);
}

void MentionAssemblyFiles() {
  Mention<Text(const Text&)>(stripNiDLL);
  Mention<void(const Text&, std::vector<Text>&)>(addPlatformAssembliesPaths);
  Mention<void(const Text&)>(printAll);
  Mention<bool(Text)>(isCrashed);
  Mention<bool(const Text&, const Text&)>(setSmack);
  Mention<void(const Text&, const Text&, bool)>(updateAssemblyInfo);
  Mention<Text()>(readSelfPath);
  Mention<uint64_t(const Text&)>(getFileSize);
  Mention<void(int, char*)>(itoaForSignalHandler);
  Mention<Text(AotPathManager*)>(AotDestinationPathGetter);
  Mention<bool(const Text&, const Text&)>(startWith);
  Mention<bool(const Text&, const Text&)>(endWith);
}

}  // namespace abi_guard
