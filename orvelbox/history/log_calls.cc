// The calls, as they stand in the plug-in's sources.
#include "orvelbox/history/log_calls.h"

#include <algorithm>

#include "base/affix.h"
#include "base/log_line.h"

namespace orvelbox {
namespace {

constexpr std::string_view kHookPrefix = "PKGMGR_PARSER_PLUGIN_";

constexpr std::string_view kEvents[] = {"INSTALL",          "UPGRADE", "REMOVED", "UNINSTALL",
                                        "RECOVERUNINSTALL", "CLEAN",   "CLEANUP", "UNDO"};

struct Call {
  std::string_view caller, function;
};
constexpr Call kCalls[] = {
    {"REMOVED", "UPGRADE"},
    {"UPGRADE", "INSTALL"},
    {"CLEANUP", "CLEAN"},
    {"INSTALL", kPass},
    {kPass, kPrivilege},
    {kPass, "getPackageByMetadataTag"},
    {kPass, kCompare},
    {kCompare, "isDPCDll"},
    {kPass, kRemove},
    {"CLEAN", "isAppCoBARelated"},
    {"CLEAN", "addPkgToTPACacheFile"},
    {"CLEAN", kTakeOut},
    {"UNINSTALL", kTakeOut},
    {"RECOVERUNINSTALL", kTakeOut},
    {"addPkgToTPACacheFile", "readCacheAndRemovePkg"},
    {kTakeOut, "readCacheAndRemovePkg"},
    {"CLEAN", kRestart},
    {"UNINSTALL", kRestart},
    {"RECOVERUNINSTALL", kRestart},
};

template <typename Match>
bool AnyCall(const Match& match) {
  return std::any_of(std::begin(kCalls), std::end(kCalls), match);
}

}  // namespace

std::string_view ShortName(std::string_view function) {
  return HasPrefix(function, kHookPrefix) ? function.substr(kHookPrefix.size()) : function;
}

std::string FunctionIn(std::string_view label) {
  const std::size_t signature = label.find(") ");
  const std::size_t end = label.find('(', signature);
  if (!HasPrefix(label, std::string(kPluginUnit) + "(") || end == std::string_view::npos) return "";
  const std::size_t begin = label.rfind(' ', end);
  return std::string(ShortName(label.substr(begin + 1, end - begin - 1)));
}

bool IsEvent(std::string_view function) {
  return std::find(std::begin(kEvents), std::end(kEvents), function) != std::end(kEvents);
}

bool IsTraced(std::string_view function) {
  return AnyCall([function](const Call& call) { return call.function == function; });
}

bool MayCall(std::string_view caller, std::string_view function) {
  return AnyCall([=](const Call& call) { return call.caller == caller && call.function == function; });
}

}  // namespace orvelbox
