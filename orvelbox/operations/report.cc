// Texts for the result of an operation.
#include "orvelbox/operations/report.h"

#include <algorithm>

#include "orvelbox/history/explain.h"
#include "platform/host/paths.h"

namespace orvelbox {
namespace {

constexpr std::size_t kLabelWidth = 8;

// "    label    text". An empty `label` still takes its column.
std::string Line(const std::string& label, const std::string& text) {
  return "    " + Padded(label, kLabelWidth) + " " + text;
}

std::string DescribeDll(const DllFate& dll, const std::string& root) {
  const std::string name = host::From(root, dll.duplicate.duplicated);
  const std::string because = name + ": " + BecauseOf(dll.duplicate.origin, root);
  if (dll.duplicate.fate == What::kStays) {
    return Line("kept", name + ": duplicates " + dll.duplicate.origin + ", whose copy is in the read-write area");
  }
  if (dll.there) return Line("kept", because + "; removing it failed, see: orvelbox log --priority E");
  return Line("removed", because + (dll.information_file ? " (see " + name + kInformationFileSuffix.data() + ")" : ""));
}

void AddCacheChange(const std::string& name, const CacheChange& change, Lines& lines) {
  Lines texts;
  for (const std::string& entry : change.gained) texts.push_back("+ " + entry);
  for (const std::string& entry : change.lost) texts.push_back("- " + entry);
  const std::string state = StateInWords(change.state);
  if (!state.empty()) texts.push_back(state);
  if (texts.empty()) texts.push_back(change.rewritten ? "rewritten, with the same entries" : "unchanged");
  for (std::size_t i = 0; i < texts.size(); ++i) lines.push_back(Line(i == 0 ? name : "", texts[i]));
}

std::string DescribeLoader(const Effects& seen) {
  if (seen.log.restart_failed) {
    return Line("loader", "restart failed: " + (seen.loader_error.empty() ? "see the log" : seen.loader_error));
  }
  return Line("loader", seen.loader_restarted ? "restarted" : "not restarted");
}

std::string DescribeHook(const HookResult& result) {
  if (result.end == HookResult::End::kReturned) return "returned " + std::to_string(result.value);
  return result.message;
}

// What hooks returned, on one line ("INSTALL returned 0, CLEAN returned 0").
std::string DescribeHooks(const HookRun& hooks) {
  std::string text;
  for (const HookResult& result : hooks.results) {
    text += (text.empty() ? "" : ", ") + result.hook + " " + DescribeHook(result);
  }
  return text;
}

bool Failed(const HookResult& result) { return result.end != HookResult::End::kReturned || result.value != 0; }

}  // namespace

Lines DescribeHooksByPackage(const HookRun& hooks) {
  Lines lines;
  for (const HookResult& result : hooks.results) {
    lines.push_back(result.hook + " " + result.package_id + " " + DescribeHook(result));
  }
  return lines;
}

Lines DescribeEffects(const Effects& seen, const std::string& root) {
  Lines lines;
  if (seen.log.not_inhouse) {
    lines.push_back(
        Line("skipped", "the plug-in did not take it for a package with an application of a \"dotnet-\" type"));
  }
  for (const DllFate& dll : seen.dlls) lines.push_back(DescribeDll(dll, root));
  AddCacheChange(kTpaFile, seen.tpa, lines);
  AddCacheChange(kCobaFile, seen.coba, lines);
  lines.push_back(DescribeLoader(seen));
  for (const std::string& error : seen.log.errors) lines.push_back(Line("error", error));
  return lines;
}

Lines ExplainDebuggingFailure(const Effects& seen, const std::string& root) {
  if (seen.log.guide.empty()) return {};
  Lines lines = {
      "    The package is under debugging (it holds the app-debugging privilege); the install of such a package",
      "    fails when it brings DLLs that are there already. These have to go from the package:"};
  for (const DllFate& dll : seen.dlls) {
    lines.push_back("      " + host::From(root, dll.duplicate.duplicated) + ": " +
                    BecauseOf(dll.duplicate.origin, root));
  }
  lines.push_back("    " + seen.log.guide);
  return lines;
}

std::string ReasonOfFailure(const Effects& seen) {
  if (!seen.hooks.problem.empty()) return seen.hooks.problem;
  if (!seen.log.guide.empty()) {
    return "the package is under debugging and " +
           Counted(seen.dlls.size(), "of its DLLs is there already; take it",
                   "of its DLLs are there already; take them") +
           " out of the package and try again";
  }
  const auto& results = seen.hooks.results;
  const auto failed = std::find_if(results.begin(), results.end(), Failed);
  if (failed == results.end()) return "";
  return failed->hook + " " + DescribeHook(*failed) + "; see: orvelbox log --priority E";
}

Lines DescribeChange(const Change& change) {
  const HookRun& hooks = change.effects.hooks;
  Lines lines;
  const auto append = [&](const Lines& more) { lines.insert(lines.end(), more.begin(), more.end()); };
  if (!hooks.results.empty()) lines.push_back("    " + DescribeHooks(hooks));
  if (!change.undone) append(DescribeEffects(change.effects, change.package.root));
  if (!change.Done()) append(ExplainDebuggingFailure(change.effects, change.package.root));
  return lines;
}

std::string ComplaintAbout(const std::string& command, const Change& change) {
  return change.package.id + ": " + command + " failed, " + ReasonOfFailure(change.effects);
}

}  // namespace orvelbox
