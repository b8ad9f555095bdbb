// The cache files: the editing of their text, then the three operations on the files.
#include "plugin/cache_files.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <utility>
#include <vector>

#include "morvath/platform_utils.h"
#include "plugin/log_source.h"
#include "plugin/package_paths.h"
#include "quarnel_util/quarnel_util.h"

namespace {

constexpr const char* kCacheDirectory = "/opt/usr/home/owner/share/dotnet/";
constexpr const char* kTpaFile = "TPA.txt";
constexpr const char* kCobaFile = "CoBA.txt";
constexpr const char* kEndMarker = "[END]";
constexpr std::size_t kEndMarkerLength = 5;
constexpr const char* kSeparator = ":";

// Line fields of this file's messages and trackers: log readers key on them, so they stay wherever the statements go.
constexpr int kReadCacheTrackerLine = 381;
constexpr int kAccessErrorLine = 392;
constexpr int kAccessLine = 396;
constexpr int kEraseLine = 412;
constexpr int kAfterEraseLine = 416;
constexpr int kRemoveTrackerLine = 422;
constexpr int kRemoveWithoutRootLine = 426;
constexpr int kAddTrackerLine = 448;
constexpr int kAddWithoutRootLine = 452;

struct Span {
  std::size_t begin;
  std::size_t end;
};

// Looks for a root in a text; made once for all the places in which the text has it.
class RootFinder {
 public:
  // `root` must outlive the finder.
  explicit RootFinder(const std::string& root) : empty_(root.empty()), searcher_(root.begin(), root.end()) {}

  // Where the first entry of the root at or after `from` begins; npos when there is none.
  std::size_t FindEntry(const std::string& text, std::size_t from) const {
    while (from <= text.size()) {
      const auto match = searcher_(text.begin() + static_cast<std::ptrdiff_t>(from), text.end()).first;
      if (match == text.end() && !empty_) break;
      const auto pos = static_cast<std::size_t>(match - text.begin());
      if (pos > 0 && (text[pos - 1] == ':' || text[pos - 1] == ']')) return pos;
      from = pos + 1;
    }
    return std::string::npos;
  }

 private:
  bool empty_;
  std::boyer_moore_horspool_searcher<std::string::const_iterator> searcher_;
};

// What goes with the entry at `pos`, behind which the next separator is at `separator`: that separator, or, for the
// last entry, the one before it, if `before` is one.
Span SpanOfEntry(const std::string& text, std::size_t pos, std::size_t separator, char before) {
  if (separator != std::string::npos) return {pos, separator + 1};
  return {before == ':' ? pos - 1 : pos, std::min(text.find('[', pos), text.size())};
}

// For roots that hold neither a separator nor part of a marker: erasing an entry then neither makes nor undoes another,
// so that one pass forward finds them all. What stays moves to the front of the text.
std::string EraseInOnePass(std::string text, const std::string& pkgRoot, const SpanReader& onErased) {
  const RootFinder root(pkgRoot);
  std::string erased;
  std::size_t kept = 0;
  std::size_t read = 0;
  const auto keepUpTo = [&](std::size_t end) {
    std::memmove(&text[kept], &text[read], end - read);
    kept += end - read;
  };
  std::size_t separator = 0;
  std::size_t pos = 0;
  while ((pos = root.FindEntry(text, read)) != std::string::npos) {
    keepUpTo(pos);
    if (separator != std::string::npos) separator = text.find(':', pos);
    const Span span = SpanOfEntry(text, pos, separator, text[kept - 1]);
    onErased(erased.assign(text, span.begin, span.end - span.begin));
    kept -= pos - span.begin;
    read = span.end;
  }
  keepUpTo(text.size());
  text.resize(kept);
  return text;
}

// For any root, erasing one entry after the other.
std::string EraseOneByOne(const std::string& text, const std::string& pkgRoot, const SpanReader& onErased) {
  const RootFinder root(pkgRoot);
  std::string edited = text;
  std::vector<std::string> erased;
  std::size_t from = 0;
  std::size_t pos = 0;
  while ((pos = root.FindEntry(edited, from)) != std::string::npos) {
    const Span span = SpanOfEntry(edited, pos, edited.find(':', pos), edited[pos - 1]);
    if (span.begin == span.end) return text;
    erased.push_back(edited.substr(span.begin, span.end - span.begin));
    edited.erase(span.begin, span.end - span.begin);
    // What lies further back than this is as it was when it held no entry.
    from = span.begin - std::min(span.begin, pkgRoot.size());
  }
  for (const std::string& span : erased) onErased(span);
  return edited;
}

void ReplaceCacheFile(const char* fileName, std::string text) {
  // The old file goes first: a failure to write leaves no cache file rather than an outdated one.
  removeFile(std::string(kCacheDirectory) + fileName);
  writeStringToFile(kCacheDirectory, fileName, std::move(text));
}

bool RemoveFromFile(const char* fileName, const std::string& pkgRoot) {
  std::string cacheText;
  const bool erased = readCacheAndRemovePkg(std::string(kCacheDirectory) + fileName, pkgRoot, cacheText);
  if (erased && !cacheText.empty()) ReplaceCacheFile(fileName, std::move(cacheText));
  return erased;
}

// The text of the cache file without the package's entries; empty when there is nothing to add to.
std::string TextWithoutPackage(const char* fileName, const std::string& pkgRoot) {
  std::string cacheText;
  readCacheAndRemovePkg(std::string(kCacheDirectory) + fileName, pkgRoot, cacheText);
  return cacheText;
}

void AddAssemblies(const std::string& pkgRoot, const std::string& sharedResources) {
  std::string cacheText = TextWithoutPackage(kTpaFile, pkgRoot);
  if (cacheText.empty()) return;
  std::string assemblies;
  addAssembliesFromDirectories({getAbsolutePath(sharedResources)}, assemblies);
  // Without assemblies the file is not rewritten, and what it held of the package stays.
  if (!assemblies.empty()) ReplaceCacheFile(kTpaFile, AppendEntries(std::move(cacheText), assemblies));
}

void AddSharedResources(const std::string& pkgRoot, const std::string& sharedResources) {
  std::string cacheText = TextWithoutPackage(kCobaFile, pkgRoot);
  if (!cacheText.empty()) ReplaceCacheFile(kCobaFile, AppendEntries(std::move(cacheText), sharedResources));
}

}  // namespace

std::string EraseEntries(std::string text, const std::string& pkgRoot, const SpanReader& onErased) {
  const bool plain = !pkgRoot.empty() && pkgRoot.find_first_of(":[]") == std::string::npos;
  return plain ? EraseInOnePass(std::move(text), pkgRoot, onErased) : EraseOneByOne(text, pkgRoot, onErased);
}

std::string AppendEntries(std::string text, const std::string& entries) {
  if (text.size() >= kEndMarkerLength) text.resize(text.size() - kEndMarkerLength);
  return std::move(text.append(kSeparator).append(entries).append(kEndMarker));
}

bool readCacheAndRemovePkg(std::string cachePath, std::string pkgRoot, std::string& cacheText) {
  FunctionEntryExitTracker tracker("bool readCacheAndRemovePkg(std::string, std::string, std::string&)",
                                   kLogSource.unit, kReadCacheTrackerLine);
  if (access(cachePath.c_str(), F_OK) != 0) {
    LOG_ERROR_AT(kAccessErrorLine, "error access cache path: %s", cachePath.c_str());
    return false;
  }
  LOG_DEBUG_AT(kAccessLine, "access cache path: %s", cachePath.c_str());
  bool erased = false;
  const char* const function = __func__;
  const auto logErased = [&](const std::string& span) {
    erased = true;
    LOG_INFO_IN(function, kEraseLine, "erase: %s from cache file: %s", span.c_str(), cachePath.c_str());
  };
  cacheText = EraseEntries(readFileToString(cachePath), pkgRoot, logErased);
  LOG_DEBUG_AT(kAfterEraseLine, "after erase: %s", cacheText.c_str());
  return erased;
}

bool removedPkgFromTPACacheFile(const char* pkgId) {
  FunctionEntryExitTracker tracker("bool removedPkgFromTPACacheFile(const char*)", kLogSource.unit, kRemoveTrackerLine);
  const std::string pkgRoot = getRootPath(pkgId);
  if (pkgRoot.empty()) {
    LOG_ERROR_AT(kRemoveWithoutRootLine, "remove from cache called for %s, but pkgroot is empty!", pkgId);
    return false;
  }
  const bool removedFromTpa = RemoveFromFile(kTpaFile, pkgRoot);
  const bool removedFromCoba = RemoveFromFile(kCobaFile, pkgRoot);
  return removedFromTpa || removedFromCoba;
}

void addPkgToTPACacheFile(const char* pkgId) {
  FunctionEntryExitTracker tracker("void addPkgToTPACacheFile(const char*)", kLogSource.unit, kAddTrackerLine);
  const std::string pkgRoot = getRootPath(pkgId);
  if (pkgRoot.empty()) {
    LOG_ERROR_AT(kAddWithoutRootLine, "add to cache called for %s, but pkgroot is empty!", pkgId);
    return;
  }
  const std::string sharedResources = pkgRoot + kSharedResourceSuffix;
  AddAssemblies(pkgRoot, sharedResources);
  AddSharedResources(pkgRoot, sharedResources);
}
