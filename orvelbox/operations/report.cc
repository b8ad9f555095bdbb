// The words for what an operation did.
#include "orvelbox/operations/report.h"

#include <algorithm>

namespace orvelbox {
namespace {

constexpr std::size_t kLabelWidth = 8;

// "    label    text": the label's column is kept where `label` is empty.
std::string Line(std::string label, const std::string& text) {
  label.resize(std::max(label.size(), kLabelWidth), ' ');
  return "    " + label + " " + text;
}

bool IsBelow(const std::string& path, const std::string& root) {
  return !root.empty() && path.compare(0, root.size() + 1, root + "/") == 0;
}

std::string Shown(const std::string& path, const std::string& root) {
  return IsBelow(path, root) ? path.substr(root.size() + 1) : path;
}

// Why a DLL is a duplicate: who has the copy that counts.
std::string Because(const Duplicate& duplicate, const std::string& root) {
  if (IsBelow(duplicate.origin, host::kPlatformAssemblies)) return "the platform has " + duplicate.origin;
  if (IsBelow(duplicate.origin, root)) return "the package has it already as " + Shown(duplicate.origin, root);
  return "it duplicates " + duplicate.origin;
}

std::string DescribeDll(const DllFate& dll, const std::string& root) {
  const std::string name = Shown(dll.duplicate.duplicated, root);
  const std::string because = name + ": " + Because(dll.duplicate, root);
  if (dll.duplicate.origin_read_write) {
    return Line("kept", name + ": duplicates " + dll.duplicate.origin + ", whose copy is in the read-write area");
  }
  if (dll.there) return Line("kept", because + "; removing it failed, see: orvelbox log --priority E");
  return Line("removed", because + (dll.information_file ? " (see " + name + "_deleted)" : ""));
}

std::string StateInWords(CacheState state) {
  switch (state) {
    case CacheState::kMissing:
      return "missing";
    case CacheState::kDamaged:
      return "damaged: it does not begin with [START] and end with [END]";
    default:
      return "";
  }
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

std::string DescribeLoader(const Observation& seen) {
  if (seen.log.restart_failed) {
    return Line("loader", "restart failed: " + (seen.loader_error.empty() ? "see the log" : seen.loader_error));
  }
  return Line("loader", seen.loader_restarted ? "restarted" : "not restarted");
}

std::string DescribeHook(const HookResult& result) {
  if (result.end == HookResult::End::kReturned) return "returned " + std::to_string(result.value);
  return result.message;
}

bool Failed(const HookResult& result) { return result.end != HookResult::End::kReturned || result.value != 0; }

std::string Counted(std::size_t number, const std::string& singular, const std::string& plural) {
  return std::to_string(number) + " " + (number == 1 ? singular : plural);
}

// `text` filled with blanks to `width`.
std::string Column(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

void AddField(const std::string& name, const std::string& value, Lines& lines) {
  if (!value.empty()) lines.push_back(Column(name, 11) + value);
}

void AddApplication(const host::Application& application, Lines& lines) {
  lines.push_back("");
  lines.push_back(application.kind + " " + application.id);
  AddField("  type", application.type, lines);
  AddField("  exec", application.exec, lines);
  for (const host::MetadataEntry& entry : application.metadata) {
    AddField("  metadata", entry.key + " = " + entry.value, lines);
  }
}

}  // namespace

std::string DescribeHooks(const HookRun& hooks) {
  std::string text;
  for (const HookResult& result : hooks.results) {
    text += (text.empty() ? "" : ", ") + result.hook + " " + DescribeHook(result);
  }
  return text;
}

Lines DescribeHooksByPackage(const HookRun& hooks) {
  Lines lines;
  for (const HookResult& result : hooks.results) {
    lines.push_back(result.hook + " " + result.package_id + " " + DescribeHook(result));
  }
  return lines;
}

Lines DescribeEffects(const Observation& seen, const std::string& root) {
  Lines lines;
  if (seen.log.not_inhouse) {
    lines.push_back(
        Line("skipped", "the plug-in leaves a package alone that has no application of a \"dotnet-\" type"));
  }
  for (const DllFate& dll : seen.dlls) lines.push_back(DescribeDll(dll, root));
  AddCacheChange("TPA.txt", seen.tpa, lines);
  AddCacheChange("CoBA.txt", seen.coba, lines);
  lines.push_back(DescribeLoader(seen));
  for (const std::string& error : seen.log.errors) lines.push_back(Line("error", error));
  return lines;
}

Lines ExplainDebuggingFailure(const Observation& seen, const std::string& root) {
  if (seen.log.guide.empty()) return {};
  Lines lines = {
      "    The package is under debugging (it holds the app-debugging privilege); the install of such a package",
      "    fails when it brings DLLs that are there already. These have to go from the package:"};
  for (const DllFate& dll : seen.dlls) {
    lines.push_back("      " + Shown(dll.duplicate.duplicated, root) + ": " + Because(dll.duplicate, root));
  }
  lines.push_back("    " + seen.log.guide);
  return lines;
}

std::string ReasonOfFailure(const Observation& seen) {
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

Lines DescribeCache(const std::string& name, const CacheText& text) {
  const std::vector<std::string> entries = EntriesOf(text);
  const std::string state = StateInWords(StateOf(text));
  const std::string path = std::string(kCacheDirectory) + name;
  Lines lines = {path + ": " + (text ? Counted(entries.size(), "entry", "entries") : state)};
  if (text && !state.empty()) lines.back() += ", " + state;
  for (const std::string& entry : entries) lines.push_back("  " + entry);
  return lines;
}

Lines DescribePackages(const std::vector<host::Package>& packages) {
  std::size_t id_width = 0;
  std::size_t version_width = 0;
  for (const host::Package& package : packages) {
    id_width = std::max(id_width, package.id.size());
    version_width = std::max(version_width, package.version.size());
  }
  Lines lines;
  for (const host::Package& package : packages) {
    lines.push_back(Column(package.id, id_width) + "  " + Column(package.version, version_width) + "  " + package.root);
  }
  return lines;
}

Lines DescribePackage(const host::Package& package) {
  Lines lines;
  AddField("package", package.id, lines);
  AddField("version", package.version, lines);
  AddField("type", package.type, lines);
  AddField("root", package.root, lines);
  AddField("main app", package.main_app_id, lines);
  for (const std::string& privilege : package.privileges) AddField("privilege", privilege, lines);
  for (const host::Application& application : package.applications) AddApplication(application, lines);
  return lines;
}

}  // namespace orvelbox
