// The words of the story.
#include "orvelbox/history/explain.h"

#include <algorithm>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "base/log_line.h"
#include "base/log_texts.h"
#include "platform/host/paths.h"

namespace orvelbox {
namespace {

constexpr std::size_t kLabelWidth = 9;
constexpr std::size_t kLinesNamed = 10;

struct Words {
  What what;
  const char* name;            // in JSON
  const char* label;           // in front of what there is to say; null: the name of the cache file
  const char* text = nullptr;  // of findings about which the same is to be said every time
};

constexpr Words kWords[] = {
    {What::kRemoved, "removed", "removed"},
    {What::kStays, "kept", "kept"},
    {What::kRemovalFailed, "removal-failed", "kept"},
    {What::kDuplicate, "duplicate", "duplicate"},
    {What::kExempt, "exempt", "kept"},
    {What::kNoDuplicates, "no-duplicates", "nothing", "was removed: no duplicate was found"},
    {What::kRefused, "refused", "refused"},
    {What::kNotDotnet, "left-alone", "skipped", "it was not taken for a package with a \"dotnet-\" application"},
    {What::kSample, "sample", "skipped", "an application of the package is a sample (its type holds \"apitest\")"},
    {What::kNoManifest, "no-manifest", "skipped", "the package manager gave no manifest"},
    {What::kRunAlready, "run-already", "skipped"},
    {What::kErased, "erased", nullptr},
    {What::kErasing, "erasing", nullptr},
    {What::kWritten, "written", nullptr, "written"},
    {What::kRestarted, "restarted", "loader", "restarted"},
    {What::kNotRestarted, "not-restarted", "loader", "could not be restarted"},
    {What::kError, "error", "error"},
};

const Words& WordsOf(What what) {
  return *std::find_if(std::begin(kWords), std::end(kWords), [what](const Words& words) { return words.what == what; });
}

// The old file is removed before a new one is written.
constexpr const char* kNotWritten = "the cache file is gone, unless removing it failed; it was not written anew";

// What follows from errors, by their first words.
constexpr std::pair<std::string_view, const char*> kConsequences[] = {
    {LOG_TEXT_NO_CACHE_FILE, "the file is missing or closed to the installer, and stays as it is"},
    {LOG_TEXT_NOT_WRITTEN, kNotWritten},
    {LOG_TEXT_LINK, "a linked DLL is kept"},
    {LOG_TEXT_REMOVE_CALLED, "the package database does not know the package; its entries stay"},
    {LOG_TEXT_ADD_CALLED, "the package database does not know the package; it gets no entries"},
    {LOG_TEXT_NO_SEARCH, "the package database does not answer; shared components were not searched for copies"},
    {LOG_TEXT_NO_PACKAGE, "the package counts as not under debugging and without the platform privilege"},
};

std::string Consequence(const std::string& error) {
  if (HasPrefix(error, std::string(LOG_TEXT_LINK) + kCacheDirectory)) return std::string("; ") + kNotWritten;
  for (const auto& [begin, consequence] : kConsequences) {
    if (HasPrefix(error, begin)) return std::string("; ") + consequence;
  }
  return "";
}

// "line 3", "lines 3, 5-7".
std::string LinesNamed(const std::vector<LineNumber>& lines) {
  std::string text;
  for (std::size_t i = 0; i < lines.size();) {
    std::size_t end = i;
    while (end + 1 < lines.size() && lines[end + 1] == lines[end] + 1) ++end;
    text += (i == 0 ? "" : ", ") + std::to_string(lines[i]);
    if (end > i) text += "-" + std::to_string(lines[end]);
    i = end + 1;
  }
  return (lines.size() == 1 ? "line " : "lines ") + text;
}

std::string Span(const Pass& pass) {
  if (pass.first == pass.last) return "line " + std::to_string(pass.first);
  return "lines " + std::to_string(pass.first) + "-" + std::to_string(pass.last);
}

std::string CacheFileIn(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string TextAboutDll(const Finding& finding) {
  if (finding.path.empty()) return "a DLL that is not named here: the copy that decides lies in the read-write area";
  const std::string root = PackageRootIn(finding.path);
  const std::string dll = host::From(root, finding.path);
  std::string because = dll + ": " + BecauseOf(finding.origin, root);
  if (finding.what == What::kStays) return because + ", and that copy lies in the read-write area";
  if (finding.what == What::kRemovalFailed) return because + "; but: " + finding.text;
  if (finding.what == What::kExempt)
    return dll + ": no duplicate of " + finding.origin + ", as one of them is for d.pc";
  return because;
}

std::string TextOf(const Finding& finding) {
  switch (finding.what) {
    case What::kRemoved:
    case What::kStays:
    case What::kRemovalFailed:
    case What::kDuplicate:
    case What::kExempt:
      return TextAboutDll(finding);
    case What::kRunAlready:
      return finding.path + " was the package of the pass before as well";
    case What::kErased:
      return "- " + finding.origin;
    case What::kErasing:
      return finding.origin + " was to go; the file may still hold it: it was not written after, or was added to";
    case What::kRefused:
      return "the package is under debugging, and has duplicates or is not registered, so its install failed; see " +
             finding.text.substr(finding.text.find(LOG_TEXT_GUIDE) + std::string_view(LOG_TEXT_GUIDE).size());
    case What::kError:
      return finding.text + Consequence(finding.text);
    default:
      return WordsOf(finding.what).text;
  }
}

std::string Describe(const Finding& finding, const std::string& package) {
  const char* const label = WordsOf(finding.what).label;
  const std::string root = PackageRootIn(finding.path);
  const std::string id = IsAssemblyName(finding.path) && package.empty() ? root.substr(root.rfind('/') + 1) : "";
  return "    " + Padded(label == nullptr ? CacheFileIn(finding.path) : label, kLabelWidth) + " " +
         (id.empty() ? "" : id + " ") + TextOf(finding) + " (" + LinesNamed(finding.lines) + ")";
}

std::string HooksOf(const Pass& pass) {
  std::string text;
  for (std::size_t i = 0; i < std::min(pass.hooks.size(), kLinesNamed); ++i) {
    text += (i == 0 ? "" : ", ") + pass.hooks[i].first + " from line " + std::to_string(pass.hooks[i].second) + " on";
  }
  return text + (pass.hooks.size() > kLinesNamed ? ", and more" : "");
}

std::string HeadlineOf(const Pass& pass) {
  std::string text = Span(pass) + ": ";
  if (!pass.tangled && pass.event.empty() && pass.hooks.empty()) return text + "a pass or more, without begin and end";
  if (pass.tangled) {
    text += "one pass or more, mixed or not whole" + (pass.hooks.empty() ? "" : ": " + HooksOf(pass));
  } else {
    text += pass.event.empty() ? HooksOf(pass) : pass.event;
    text += " of " + (pass.package.empty() ? "a package that is not certain" : pass.package);
  }
  return text + (pass.process.empty() ? "" : " (process " + pass.process + ")");
}

// UPGRADE and REMOVED call INSTALL, unless something is thrown before.
bool BrokeOff(const Pass& pass) {
  if (!pass.ended || (pass.event != "UPGRADE" && pass.event != "REMOVED")) return false;
  return std::none_of(pass.hooks.begin(), pass.hooks.end(), [](const auto& hook) { return hook.first == "INSTALL"; });
}

}  // namespace

std::string BecauseOf(const std::string& origin, const std::string& root) {
  if (origin.empty()) return "a duplicate of what the log does not say";
  if (host::IsBelow(origin, kPlatformAssemblies)) return "the platform has " + origin;
  if (host::IsBelow(origin, root)) return "the package has it already as " + host::From(root, origin);
  return "it duplicates " + origin;
}

const char* NameOf(What what) { return WordsOf(what).name; }

Lines UnknownOf(const Pass& pass) {
  Lines unknown;
  const auto is_open = [](const Finding& finding) { return finding.what == What::kDuplicate; };
  const bool open = std::any_of(pass.findings.begin(), pass.findings.end(), is_open);
  if (pass.tangled) {
    unknown.push_back(pass.process.empty()
                          ? "what belongs to which package, and became of it: these are lines of several processes at "
                            "once, or some are missing; where one broke off, give what follows as a log of its own"
                          : "what became of it: lines of the process are missing or damaged");
  } else if (!pass.begun && !pass.ended && pass.hooks.empty()) {
    unknown.push_back("which hooks were called: the log has no begin and no end of one (priority D, tag QUARNEL)");
  } else {
    if (!pass.begun) unknown.push_back("what came before: the log begins in the middle of the pass");
    if (BrokeOff(pass)) unknown.push_back("why: " + pass.event + " broke off before INSTALL");
    if (!pass.ended) unknown.push_back("what came after: the log ends within the pass, or the process did");
  }
  if (open) {
    unknown.push_back(
        "whether a duplicate went: it does unless its origin lies in the read-write area or removing it fails, "
        "and the log does not show for sure that neither was so");
  }
  return unknown;
}

Lines UnknownOf(const std::string& log, const LogFacts& facts) {
  Lines unknown;
  if (facts.passes.empty()) {
    unknown.push_back(
        "anything at all: " + log +
        " holds no line of the plug-in that could be read; give a log as plain text, unpacked, with a message a line");
  }
  const auto nameless = [](const Pass& pass) { return pass.package.empty() && !pass.tangled && !pass.hooks.empty(); };
  if (std::any_of(facts.passes.begin(), facts.passes.end(), nameless)) {
    unknown.push_back("packages that are not certain: of most passes no line names the package");
  }
  if (!facts.passes.empty() && !facts.of_plugin) {
    unknown.push_back(std::string("what the plug-in itself said: there is no line of the tag ") + kPluginTag);
  }
  if (facts.unclear_lines > 0) {
    unknown.push_back("what " + LinesNamed(facts.unclear) +
                      (facts.unclear.size() < facts.unclear_lines ? " and more" : "") +
                      " said: damaged, or without the lines that belong to them");
  }
  if (facts.unread_from > 0) {
    unknown.push_back("what follows from line " + std::to_string(facts.unread_from) + " on: " + kMoreThanCanBeTold +
                      "; cut it into pieces");
  }
  return unknown;
}

Lines DescribeStory(const std::string& log, const LogFacts& facts) {
  Lines lines;
  const auto tell_unknown = [&lines](const Lines& all, const std::string& indent) {
    const std::string label = indent + Padded("unknown ", kLabelWidth + 1);
    for (const std::string& unknown : all) lines.push_back(label + unknown);
  };
  for (const Pass& pass : facts.passes) {
    lines.push_back(HeadlineOf(pass));
    for (const Finding& finding : pass.findings) lines.push_back(Describe(finding, pass.package));
    const Lines unknown = UnknownOf(pass);
    if (pass.findings.empty() && unknown.empty()) lines.push_back("    " + Padded("nothing", kLabelWidth) + " to tell");
    tell_unknown(unknown, "    ");
  }
  tell_unknown(UnknownOf(log, facts), "");
  return lines;
}

}  // namespace orvelbox
