// The cache files: the editing of their text, then the three operations on the files.
#include "plugin/cache_files.h"

#include <unistd.h>

#include <algorithm>

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

// Where the first entry of `root` at or after `from` begins; npos when there is none.
std::size_t FindEntry(const std::string& text, const std::string& root, std::size_t from) {
  std::size_t pos = text.find(root, from);
  while (pos != std::string::npos && (pos == 0 || (text[pos - 1] != ':' && text[pos - 1] != ']'))) {
    pos = text.find(root, pos + 1);
  }
  return pos;
}

// What goes with the entry at `pos`: the separator behind it, or, for the last entry, the one before it.
Span SpanOfEntry(const std::string& text, std::size_t pos) {
  const std::size_t separator = text.find(':', pos);
  if (separator != std::string::npos) return {pos, separator + 1};
  return {text[pos - 1] == ':' ? pos - 1 : pos, std::min(text.find('[', pos), text.size())};
}

void ReplaceCacheFile(const char* fileName, const std::string& text) {
  // The old file goes first: a failure to write leaves no cache file rather than an outdated one.
  removeFile(std::string(kCacheDirectory) + fileName);
  writeStringToFile(kCacheDirectory, fileName, text);
}

bool RemoveFromFile(const char* fileName, const std::string& pkgRoot) {
  std::string cacheText;
  const bool erased = readCacheAndRemovePkg(std::string(kCacheDirectory) + fileName, pkgRoot, cacheText);
  if (erased && !cacheText.empty()) ReplaceCacheFile(fileName, cacheText);
  return erased;
}

// The text of the cache file without the package's entries; empty when there is nothing to add to.
std::string TextWithoutPackage(const char* fileName, const std::string& pkgRoot) {
  std::string cacheText;
  readCacheAndRemovePkg(std::string(kCacheDirectory) + fileName, pkgRoot, cacheText);
  return cacheText;
}

void AddAssemblies(const std::string& pkgRoot, const std::string& sharedResources) {
  const std::string cacheText = TextWithoutPackage(kTpaFile, pkgRoot);
  if (cacheText.empty()) return;
  std::string assemblies;
  addAssembliesFromDirectories({getAbsolutePath(sharedResources)}, assemblies);
  // Without assemblies the file is not rewritten, and what it held of the package stays.
  if (!assemblies.empty()) ReplaceCacheFile(kTpaFile, AppendEntries(cacheText, assemblies));
}

void AddSharedResources(const std::string& pkgRoot, const std::string& sharedResources) {
  const std::string cacheText = TextWithoutPackage(kCobaFile, pkgRoot);
  if (!cacheText.empty()) ReplaceCacheFile(kCobaFile, AppendEntries(cacheText, sharedResources));
}

}  // namespace

CacheEdit EraseEntries(const std::string& text, const std::string& pkgRoot) {
  CacheEdit edit{text, {}};
  std::size_t from = 0;
  std::size_t pos = 0;
  while ((pos = FindEntry(edit.text, pkgRoot, from)) != std::string::npos) {
    const Span span = SpanOfEntry(edit.text, pos);
    if (span.begin == span.end) return {text, {}};
    edit.erased.push_back(edit.text.substr(span.begin, span.end - span.begin));
    edit.text.erase(span.begin, span.end - span.begin);
    // What lies further back than this is as it was when it held no entry.
    from = span.begin - std::min(span.begin, pkgRoot.size());
  }
  return edit;
}

std::string AppendEntries(const std::string& text, const std::string& entries) {
  const std::size_t kept = text.size() < kEndMarkerLength ? text.size() : text.size() - kEndMarkerLength;
  return text.substr(0, kept) + kSeparator + entries + kEndMarker;
}

bool readCacheAndRemovePkg(std::string cachePath, std::string pkgRoot, std::string& cacheText) {
  FunctionEntryExitTracker tracker("bool readCacheAndRemovePkg(std::string, std::string, std::string&)",
                                   kLogSource.unit, kReadCacheTrackerLine);
  if (access(cachePath.c_str(), F_OK) != 0) {
    LOG_ERROR_AT(kAccessErrorLine, "error access cache path: %s", cachePath.c_str());
    return false;
  }
  LOG_DEBUG_AT(kAccessLine, "access cache path: %s", cachePath.c_str());
  CacheEdit edit = EraseEntries(readFileToString(cachePath), pkgRoot);
  for (const std::string& span : edit.erased) {
    LOG_INFO_AT(kEraseLine, "erase: %s from cache file: %s", span.c_str(), cachePath.c_str());
  }
  cacheText = std::move(edit.text);
  LOG_DEBUG_AT(kAfterEraseLine, "after erase: %s", cacheText.c_str());
  return !edit.erased.empty();
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
