// Lines as the plug-in logs them, and what is read of them, for tests of those who read them.
#ifndef TESTS_ORVELBOX_HISTORY_TOLD_LOG_H_
#define TESTS_ORVELBOX_HISTORY_TOLD_LOG_H_

#include <string>

#include "orvelbox/desk/output.h"
#include "orvelbox/history/explain.h"
#include "orvelbox/history/log_facts.h"

namespace orvelbox {

class ToldLog {
 public:
  // With a process, the log of a desk; otherwise one without anything before the messages.
  explicit ToldLog(std::string process = "") : process_(std::move(process)) {}

  ToldLog& Say(const std::string& function, const std::string& colour, const std::string& text,
               const std::string& unit = "morvath") {
    const std::string escape = process_.empty() ? "\x1b[" : "\\e[";
    const std::string before = process_.empty() ? "" : "2026-11-21T08:00:00.123Z D TAG " + process_ + " ";
    lines_.push_back(before + unit + ": " + function + "(7) > " + escape + colour + "m" + text + escape + "0m");
    return *this;
  }

  // A function, or an event's hook.
  ToldLog& Enter(const std::string& function) { return Frame("FunctionEntryExitTracker", " +DotNETLog:", function); }
  ToldLog& Exit(const std::string& function) { return Frame("~FunctionEntryExitTracker", "-DotNETLog:", function); }

  // A DLL that is looked at, and taken for a duplicate. `failed`: what is said when it cannot be removed.
  ToldLog& Duplicate(const std::string& origin, const std::string& dll, bool stays = false,
                     const std::string& failed = "") {
    Enter("isDuplicatedDll");
    Say("isDuplicatedDll", "0", "### Duplicated Checker ### Origin : " + origin + ", Duplicated : " + dll);
    Say("isDuplicatedDll", "31", "### Duplicated DLL found ###");
    Say("isDuplicatedDll", "31", "Origin : " + origin);
    Say("isDuplicatedDll", "31", "Duplicated : " + dll);
    Exit("isDuplicatedDll");
    const std::string remove = "removeFileAndLeaveInformationFile";
    Enter(remove);
    if (stays) Say(remove, "31", "Origin file is in RW area. so doesn't remove duplicate file");
    if (!failed.empty()) Say("removeFile", "31", failed, "quarnel_util");
    return Exit(remove);
  }

  const Lines& lines() const { return lines_; }

 private:
  static bool IsHook(const std::string& function) { return function.find_first_of("abcdefghij") == std::string::npos; }

  ToldLog& Frame(const std::string& function, const std::string& mark, const std::string& of) {
    const std::string name = IsHook(of) ? "PKGMGR_PARSER_PLUGIN_" + of : of;
    return Say(function, "90", mark + "morvath(38) int " + name + "(xmlDocPtr, const char*)", "log");
  }

  std::string process_;
  Lines lines_;
};

inline LogFacts FactsOf(const Lines& lines) {
  FactReader reader;
  for (const std::string& line : lines) reader.Read(line);
  return reader.Take();
}

// The findings in order, each as "NAME PATH ORIGIN".
inline Lines Told(const LogFacts& facts) {
  Lines told;
  for (const Pass& pass : facts.passes) {
    for (const Finding& finding : pass.findings) {
      told.push_back(std::string(NameOf(finding.what)) + " " + finding.path + " " + finding.origin);
    }
  }
  return told;
}

}  // namespace orvelbox

#endif
