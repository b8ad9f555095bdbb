// What parts of the plug-in write whenever they run: building blocks of expected journals.
#ifndef TESTS_SUPPORT_EXPECTED_LINES_H_
#define TESTS_SUPPORT_EXPECTED_LINES_H_

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/doubles/expected_journal.h"

namespace unit {

using doubles::Source;
using doubles::Steps;

// A package whose application carries the CoBA key.
doubles::Package CobaPackage(const std::string& id, const std::string& root);

// A function of the plug-in's own unit.
Source Plugin(const std::string& function);

// A traced function of the plug-in's own unit.
Steps TracedPlugin(const std::string& signature, const Steps& inside);
Steps TracedPlugin(const std::string& signature, std::initializer_list<Steps> inside);

// A hook by the end of its name, e.g. "INSTALL".
Steps Hook(const std::string& event, std::initializer_list<Steps> inside);

// isAppDotnetInhouse walking over nodes of these names, without what it decides.
Steps Names(const std::vector<std::string>& names);
// isAppDotnetInhouse over support::DotnetManifest() and support::OtherManifest().
Steps DotnetWalk();
Steps OtherWalk();
// isAppCoBARelated, and its lines for nodes of these names.
Steps CobaWalk(const Steps& inside);
Steps LocalNames(const std::vector<std::string>& names);
// The whole of it over support::CobaManifest() and support::DotnetManifest().
Steps CobaFound();
Steps NoCobaFound();
// The gate's line, said by a hook.
Steps NotInhouse(const std::string& event);

// A look for a privilege that finds nothing, and one that finds it.
Steps NoPrivilege();
Steps HavePrivilege(const std::string& privilege);

// The pass up to its size lines, for a package without the platform privilege and without CoBA applications.
Steps PassOverPlatform(std::size_t core_size, std::size_t framework_size);
// A whole pass of such a package.
Steps Pass(std::size_t core_size, std::size_t framework_size, const Steps& walk = {});

// isDPCDll saying no; and saying yes, with isDuplicatedDll saying so again. The text ends in a line break of its own.
Steps NotDpc();
Steps Dpc(const std::string& path);
// isDuplicatedDll comparing the two, and what it then does.
Steps Compared(const std::string& origin, const std::string& duplicated, const Steps& inside);
// removeFileAndLeaveInformationFile.
Steps RemovalFrame(const Steps& inside = {});
// isUniqueDll meeting a duplicate and removing it.
Steps DuplicateRemoved(const std::string& origin, const std::string& duplicated);
// isUniqueDll comparing a catalogued file with itself.
Steps ComparedWithItself(const std::string& path);

// readCacheAndRemovePkg of a file, erasing these spans and leaving that text; of a missing file.
Steps CacheRead(const std::string& file, const std::vector<std::string>& erased, const std::string& left);
Steps CacheMissing(const std::string& file);
// removedPkgFromTPACacheFile and addPkgToTPACacheFile.
Steps Removing(std::initializer_list<Steps> inside);
Steps Adding(std::initializer_list<Steps> inside);
// isRealPath of a file that is not there yet.
Steps NotThereYet();
// writeStringToFile over a target that is not there.
Steps Saved(const std::string& target);

// restartDotnetCandidateProcess without a failure.
Steps LoaderRestarted();

}  // namespace unit

#endif
