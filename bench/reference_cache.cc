// Removes the package from both cache files: one read, one pass over the text, one write.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "bench/device_tree.h"
#include "bench/reference.h"
#include "bench/reference_log.h"
#include "orvel/dlog.h"

namespace bench {

namespace {

constexpr const char* kDirectory = "/opt/usr/home/owner/share/dotnet/";
constexpr const char* kRead = "bool readCacheAndRemovePkg(std::string, std::string, std::string&)";
constexpr const char* kRemove = "bool removedPkgFromTPACacheFile(const char*)";

std::string ReadWhole(const char* path) {
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  struct stat status {};
  fstat(file, &status);
  std::string text(static_cast<std::size_t>(status.st_size), '\0');
  if (read(file, text.data(), text.size()) != status.st_size) std::perror("bench_reference");
  close(file);
  return text;
}

// Moves the remaining text to the front. Entries begin after ":" or "]". Returns whether anything was removed.
bool EraseEntries(std::string& text, const char* path, bool logs) {
  const std::string root = kPackageRoot;
  std::string span;
  std::size_t kept = 0;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t colon = text.find(':', begin);
    const std::size_t end = colon == std::string::npos ? text.size() : colon + 1;
    const std::size_t entry = begin == 0 ? text.find(']') + 1 : begin;
    if (text.compare(entry, root.size(), root) != 0) {
      std::memmove(&text[kept], &text[begin], end - begin);
      kept += end - begin;
    } else {
      // The start marker before the first entry and the end marker after the last one stay.
      const std::size_t stop = colon == std::string::npos ? text.find('[', entry) : end;
      if (logs) LogErased(span.assign(text, entry, stop - entry).c_str(), path);
      std::memmove(&text[kept], &text[begin], entry - begin);
      kept += entry - begin;
      if (colon == std::string::npos && kept > 0 && text[kept - 1] == ':') --kept;
      std::memmove(&text[kept], &text[stop], end - stop);
      kept += end - stop;
    }
    begin = end;
  }
  const bool erased = kept != text.size();
  text.resize(kept);
  return erased;
}

void WriteWhole(const std::string& path, const std::string& temporary, const std::string& text) {
  struct stat status {};
  lstat(temporary.c_str(), &status);
  lstat(path.c_str(), &status);
  const int file = open(temporary.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (write(file, text.data(), text.size()) < 0) std::perror("bench_reference");
  fsync(file);
  close(file);
  rename(temporary.c_str(), path.c_str());
}

void LogUtility(const char* function, const char* text, const char* rest) {
  __dlog_print(DLOG_MAIN, DLOG_DEBUG, "QUARNEL", "%s: %s(%d) > \033[0m%s%s\033[0m\n", "platform_utils", function, 40,
               text, rest);
}

void RemoveFrom(const char* name, bool logs) {
  const std::string path = std::string(kDirectory) + name;
  if (logs) Enter(kRead);
  if (access(path.c_str(), F_OK) != 0) return;
  if (logs) Debug("readCacheAndRemovePkg", 396, "access cache path: ", path.c_str());
  std::string text = ReadWhole(path.c_str());
  const bool erased = EraseEntries(text, path.c_str(), logs);
  if (logs) Debug("readCacheAndRemovePkg", 416, "after erase: ", text.c_str());
  if (logs) Leave(kRead);
  if (!erased) return;
  unlink(path.c_str());
  if (logs) {
    for (int missing = 0; missing < 2; ++missing) {
      LogUtility("isRealPath", "File does not exist. No need to check symbolic links. ###", "");
    }
  }
  WriteWhole(path, std::string(kDirectory) + "temp_" + name, text);
  if (logs) LogUtility("writeStringToFile", "Save File : ", path.c_str());
  if (logs) LogUtility("writeStringToFile", "Saved", "");
}

}  // namespace

void ReferenceRemove(Reference reference) {
  const bool logs = reference == Reference::kLimit;
  if (logs) Enter(kRemove);
  RemoveFrom("TPA.txt", logs);
  RemoveFrom("CoBA.txt", logs);
  if (logs) Leave(kRemove);
}

}  // namespace bench
