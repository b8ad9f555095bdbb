// The cache files: editing their text, and the three operations on the files.
#include "plugin/cache_files.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "base/fixed_names.h"
#include "morvath/platform_utils.h"
#include "plugin/log_source.h"
#include "quarnel_util/quarnel_util.h"

namespace {

// Line fields of this file's messages and trackers. Log readers search for them, so they do not follow the code.
constexpr int kReadCacheTrackerLine = 381;
constexpr int kAccessErrorLine = 392;
constexpr int kAccessLine = 396;
constexpr int kEraseLine = 412;
constexpr int kAfterEraseLine = 416;
constexpr int kRemoveTrackerLine = 422;
constexpr int kRemoveWithoutRootLine = 426;
constexpr int kAddTrackerLine = 448;
constexpr int kAddWithoutRootLine = 452;

// Searches a text for a root. Constructed once and used for all occurrences.
class RootFinder {
 public:
  // `root` must outlive the finder.
  explicit RootFinder(const std::string& root) : empty_(root.empty()), searcher_(root.begin(), root.end()) {}

  // The position of the first entry of the root at or after `begin`; npos when there is none. `before` is the character
  // that precedes `begin`.
  std::size_t FindEntry(const std::string& text, std::size_t begin, char before) const {
    for (std::size_t from = begin; from <= text.size();) {
      const auto match = searcher_(text.begin() + static_cast<std::ptrdiff_t>(from), text.end()).first;
      if (match == text.end() && !empty_) break;
      const auto pos = static_cast<std::size_t>(match - text.begin());
      const char preceding = pos > begin ? text[pos - 1] : before;
      if (preceding == kEntrySeparator || preceding == ']') return pos;
      from = pos + 1;
    }
    return std::string::npos;
  }

 private:
  bool empty_;
  std::boyer_moore_horspool_searcher<std::string::const_iterator> searcher_;
};

// No result when erasing would not terminate, because nothing stands between an entry and the next "[".
std::optional<std::string> EraseAll(std::string text, const std::string& pkgRoot, const SpanReader& onErased) {
  const RootFinder root(pkgRoot);
  std::string erased;
  std::size_t kept = 0;                     // [0, kept): the text that stays
  std::size_t unread = 0;                   // [unread, end): the text still to search; between the two is a gap
  std::size_t separatorsEnd = text.size();  // no separator at or after this position
  const auto keepUpTo = [&](std::size_t end) {
    std::memmove(&text[kept], &text[unread], end - unread);
    kept += end - unread;
  };
  std::size_t pos = 0;
  while ((pos = root.FindEntry(text, unread, kept > 0 ? text[kept - 1] : '\0')) != std::string::npos) {
    keepUpTo(pos);
    const std::size_t separator = std::string_view(text.data(), separatorsEnd).find(kEntrySeparator, pos);
    std::size_t separatorsBefore = 0;  // to erase with the entry, because it is the last one
    if (separator != std::string::npos) {
      unread = separator + 1;
    } else {
      unread = separatorsEnd = std::min(text.find(kEndMarker.front(), pos), text.size());
      if (text[kept - 1] == kEntrySeparator) separatorsBefore = 1;
      if (separatorsBefore == 0 && unread == pos) return std::nullopt;
    }
    onErased(erased.assign(separatorsBefore, kEntrySeparator).append(text, pos, unread - pos));
    kept -= separatorsBefore;
    // Joining the two ends may form an entry that was none before.
    const std::size_t carried = std::min(kept, pkgRoot.size());
    kept -= carried;
    unread -= carried;
    std::memmove(&text[unread], &text[kept], carried);
  }
  keepUpTo(text.size());
  text.resize(kept);
  return text;
}

void ReplaceCacheFile(const char* fileName, std::string text) {
  // The old file is removed first: after a failed write there is no cache file, instead of an outdated one.
  removeFile(std::string(kCacheDirectory) + fileName);
  writeStringToFile(kCacheDirectory, fileName, std::move(text));
}

bool RemoveFromFile(const char* fileName, const std::string& pkgRoot) {
  std::string cacheText;
  const bool erased = readCacheAndRemovePkg(std::string(kCacheDirectory) + fileName, pkgRoot, cacheText);
  if (erased && !cacheText.empty()) ReplaceCacheFile(fileName, std::move(cacheText));
  return erased;
}

// The text of the cache file without the package's entries; empty when the file is missing or empty.
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
  // Without assemblies the file is not rewritten and keeps the package's old entries.
  if (!assemblies.empty()) ReplaceCacheFile(kTpaFile, AppendEntries(std::move(cacheText), assemblies));
}

void AddSharedResources(const std::string& pkgRoot, const std::string& sharedResources) {
  std::string cacheText = TextWithoutPackage(kCobaFile, pkgRoot);
  if (!cacheText.empty()) ReplaceCacheFile(kCobaFile, AppendEntries(std::move(cacheText), sharedResources));
}

}  // namespace

std::string EraseEntries(std::string text, const std::string& pkgRoot, const SpanReader& onErased) {
  // Only for such a root can the text before the next "[" be empty.
  const bool mayNeverEnd = pkgRoot.empty() || pkgRoot.front() == kEndMarker.front();
  if (mayNeverEnd && !EraseAll(text, pkgRoot, [](const std::string&) {})) return text;
  return *EraseAll(std::move(text), pkgRoot, onErased);
}

std::string AppendEntries(std::string text, const std::string& entries) {
  if (text.size() >= kEndMarker.size()) text.resize(text.size() - kEndMarker.size());
  text += kEntrySeparator;
  return std::move(text.append(entries).append(kEndMarker));
}

bool readCacheAndRemovePkg(std::string cachePath, std::string pkgRoot, std::string& cacheText) {
  FunctionEntryExitTracker tracker("bool readCacheAndRemovePkg(std::string, std::string, std::string&)",
                                   kLogSource.unit, kReadCacheTrackerLine);
  if (access(cachePath.c_str(), F_OK) != 0) {
    LOG_ERROR_AT(kAccessErrorLine, LOG_TEXT_NO_CACHE_FILE "%s", cachePath.c_str());
    return false;
  }
  LOG_DEBUG_AT(kAccessLine, "access cache path: %s", cachePath.c_str());
  bool erased = false;
  const char* const function = __func__;
  const auto logErased = [&](const std::string& span) {
    erased = true;
    LOG_INFO_IN(function, kEraseLine, LOG_TEXT_ERASED "%s" LOG_TEXT_ERASED_FROM "%s", span.c_str(), cachePath.c_str());
  };
  cacheText = EraseEntries(readFileToString(cachePath), pkgRoot, logErased);
  LOG_DEBUG_AT(kAfterEraseLine, "after erase: %s", cacheText.c_str());
  return erased;
}

bool removedPkgFromTPACacheFile(const char* pkgId) {
  FunctionEntryExitTracker tracker("bool removedPkgFromTPACacheFile(const char*)", kLogSource.unit, kRemoveTrackerLine);
  const std::string pkgRoot = getRootPath(pkgId);
  if (pkgRoot.empty()) {
    LOG_ERROR_AT(kRemoveWithoutRootLine, LOG_TEXT_REMOVE_CALLED "%s" LOG_TEXT_WITHOUT_ROOT, pkgId);
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
    LOG_ERROR_AT(kAddWithoutRootLine, LOG_TEXT_ADD_CALLED "%s" LOG_TEXT_WITHOUT_ROOT, pkgId);
    return;
  }
  const std::string sharedResources = pkgRoot + kSharedResourceSuffix;
  AddAssemblies(pkgRoot, sharedResources);
  AddSharedResources(pkgRoot, sharedResources);
}
