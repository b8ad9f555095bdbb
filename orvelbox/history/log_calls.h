// Which of the plug-in's traced functions calls which: what tells the lines of one pass from those of several.
#ifndef ORVEL_ORVELBOX_HISTORY_LOG_CALLS_H_
#define ORVEL_ORVELBOX_HISTORY_LOG_CALLS_H_

#include <string>
#include <string_view>

namespace orvelbox {

inline constexpr std::string_view kPass = "gac";
inline constexpr std::string_view kPrivilege = "HasPlatformPrivilege";  // the first thing that the pass calls
inline constexpr std::string_view kCompare = "isDuplicatedDll";
inline constexpr std::string_view kRemove = "removeFileAndLeaveInformationFile";
inline constexpr std::string_view kTakeOut = "removedPkgFromTPACacheFile";
inline constexpr std::string_view kRestart = "restartDotnetCandidateProcess";

// A hook's event ("INSTALL"); any other function as it is.
std::string_view ShortName(std::string_view function);

// The plug-in's function in the label of an entry or exit line ("morvath(38) int gac(const std::string&)"), by
// its short name. Empty for any other unit's.
std::string FunctionIn(std::string_view label);

bool IsEvent(std::string_view function);
// Is it a function that logs its entry and exit?
bool IsTraced(std::string_view function);
bool MayCall(std::string_view caller, std::string_view function);

}  // namespace orvelbox

#endif
