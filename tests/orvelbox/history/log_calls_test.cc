// The names of traced functions, and which of them call which.
#include "orvelbox/history/log_calls.h"

#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

TEST(LogCalls, the_function_is_found_in_its_label) {
  EXPECT_EQ(FunctionIn("morvath(38) int gac(const std::string&)"), "gac");
  EXPECT_EQ(FunctionIn("morvath(38) gac()"), "gac");
  EXPECT_EQ(FunctionIn("morvath(38) int PKGMGR_PARSER_PLUGIN_INSTALL(xmlDocPtr, const char*)"), "INSTALL");
  for (const char* label : {"", "morvath", "morvath(38", "morvath(38) int gac", "morvath: int gac(x) y",
                            "other(38) int gac(const std::string&)"}) {
    EXPECT_EQ(FunctionIn(label), "") << label;
  }
}

TEST(LogCalls, events_are_the_hooks) {
  for (const char* event :
       {"INSTALL", "UPGRADE", "REMOVED", "UNINSTALL", "RECOVERUNINSTALL", "CLEAN", "CLEANUP", "UNDO"}) {
    EXPECT_TRUE(IsEvent(event)) << event;
  }
  EXPECT_FALSE(IsEvent("gac"));
}

TEST(LogCalls, a_function_is_called_by_certain_others_only) {
  const std::pair<const char*, const char*> calls[] = {{"REMOVED", "UPGRADE"},
                                                       {"UPGRADE", "INSTALL"},
                                                       {"CLEANUP", "CLEAN"},
                                                       {"INSTALL", "gac"},
                                                       {"gac", "HasPlatformPrivilege"},
                                                       {"gac", "getPackageByMetadataTag"},
                                                       {"gac", "isDuplicatedDll"},
                                                       {"isDuplicatedDll", "isDPCDll"},
                                                       {"gac", "removeFileAndLeaveInformationFile"},
                                                       {"CLEAN", "isAppCoBARelated"},
                                                       {"CLEAN", "addPkgToTPACacheFile"},
                                                       {"CLEAN", "removedPkgFromTPACacheFile"},
                                                       {"UNINSTALL", "removedPkgFromTPACacheFile"},
                                                       {"RECOVERUNINSTALL", "removedPkgFromTPACacheFile"},
                                                       {"addPkgToTPACacheFile", "readCacheAndRemovePkg"},
                                                       {"removedPkgFromTPACacheFile", "readCacheAndRemovePkg"},
                                                       {"CLEAN", "restartDotnetCandidateProcess"},
                                                       {"UNINSTALL", "restartDotnetCandidateProcess"},
                                                       {"RECOVERUNINSTALL", "restartDotnetCandidateProcess"}};
  for (const auto& [caller, function] : calls) {
    EXPECT_TRUE(MayCall(caller, function)) << caller << " " << function;
    EXPECT_FALSE(MayCall(function, caller)) << caller << " " << function;
    EXPECT_TRUE(IsTraced(function)) << function;
  }
  EXPECT_FALSE(MayCall("INSTALL", "CLEAN"));
  EXPECT_FALSE(IsTraced("UNDO"));
}

}  // namespace
}  // namespace orvelbox
