// The story of a log, in words and as JSON: what the plug-in did to each package, why, which lines say so, and what the
// log leaves open. Pure; what is concluded is in log_facts.
#ifndef ORVEL_ORVELBOX_HISTORY_EXPLAIN_H_
#define ORVEL_ORVELBOX_HISTORY_EXPLAIN_H_

#include <string>

#include "orvelbox/desk/output.h"
#include "orvelbox/history/log_facts.h"
#include "orvelbox/history/log_findings.h"

namespace orvelbox {

// Why a DLL of the package in `root` is a duplicate: who has the copy that decides.
std::string BecauseOf(const std::string& origin, const std::string& root);

// The name of a finding in JSON: "removed".
const char* NameOf(What what);

// What the log does not tell of a pass.
Lines UnknownOf(const Pass& pass);
// What it does not tell as a whole; `log` names it.
Lines UnknownOf(const std::string& log, const LogFacts& facts);

Lines DescribeStory(const std::string& log, const LogFacts& facts);
// One JSON object.
std::string StoryJson(const std::string& log, const LogFacts& facts);

}  // namespace orvelbox

#endif
