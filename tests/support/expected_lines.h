// The log lines of the plug-in's parts: building blocks of expected journals.
#ifndef TESTS_SUPPORT_EXPECTED_LINES_H_
#define TESTS_SUPPORT_EXPECTED_LINES_H_

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/doubles/expected_journal.h"

namespace unit {

using doubles::Source;
using doubles::Steps;

// A package whose application has the CoBA key.
doubles::Package CobaPackage(const std::string& id, const std::string& root);

// A function of the plug-in's own unit.
Source Plugin(const std::string& function);

// A traced function of the plug-in's own unit.
Steps TracedPlugin(const std::string& signature, const Steps& inside);
Steps TracedPlugin(const std::string& signature, std::initializer_list<Steps> inside);

// A hook by the end of its name, e.g. "INSTALL".
Steps Hook(const std::string& event, std::initializer_list<Steps> inside);

// isAppDotnetInhouse for nodes of these names, without its result.
Steps Names(const std::vector<std::string>& names);
// isAppDotnetInhouse for support::DotnetManifest() and support::OtherManifest().
Steps DotnetWalk();
Steps OtherWalk();
// isAppCoBARelated, and its lines for nodes of these names.
Steps CobaWalk(const Steps& inside);
Steps LocalNames(const std::vector<std::string>& names);
// All of it for support::CobaManifest() and support::DotnetManifest().
Steps CobaFound();
Steps NoCobaFound();
// The line of a hook that ignores the package.
Steps NotInhouse(const std::string& event);

// A privilege query that does not find it, and one that does.
Steps NoPrivilege();
Steps HavePrivilege(const std::string& privilege);

// The pass up to its size lines, for a package without the platform privilege and without CoBA applications.
Steps PassOverPlatform(std::size_t core_size, std::size_t framework_size);
// A whole pass of such a package.
Steps Pass(std::size_t core_size, std::size_t framework_size, const Steps& walk = {});

// isDPCDll returning false; and returning true, with isDuplicatedDll logging it again. The text ends in its own line
// break.
Steps NotDpc();
Steps Dpc(const std::string& path);
// isDuplicatedDll for these two paths, and the steps that follow.
Steps Compared(const std::string& origin, const std::string& duplicated, const Steps& inside);
// removeFileAndLeaveInformationFile.
Steps RemovalFrame(const Steps& inside = {});
// isUniqueDll finding a duplicate and removing it.
Steps DuplicateRemoved(const std::string& origin, const std::string& duplicated);
// isUniqueDll comparing a catalogued file with itself.
Steps ComparedWithItself(const std::string& path);

// readCacheAndRemovePkg of a file, erasing these spans with this result; of a missing file.
Steps CacheRead(const std::string& file, const std::vector<std::string>& erased, const std::string& left);
Steps CacheMissing(const std::string& file);
// removedPkgFromTPACacheFile and addPkgToTPACacheFile.
Steps Removing(std::initializer_list<Steps> inside);
Steps Adding(std::initializer_list<Steps> inside);
// isRealPath for a file that does not exist yet.
Steps NotThereYet();
// writeStringToFile for a target that does not exist.
Steps Saved(const std::string& target);

// restartDotnetCandidateProcess without a failure.
Steps LoaderRestarted();

}  // namespace unit

#endif
