// Interposed functions. They are exported, so that shared libraries call them too.
#include "tests/support/interposed.h"

#include <dirent.h>
#include <dlfcn.h>
#include <libxml/xmlreader.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "tests/doubles/platform.h"

namespace interposed {

Settings& Now() {
  static Settings settings;
  return settings;
}

namespace {

// The function that this program's definition of that name hides.
template <typename Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

}  // namespace interposed

#pragma GCC visibility push(default)
extern "C" {

dirent64* readdir64(DIR* directory) {
  static auto* const next = interposed::Next<dirent64*(DIR*)>("readdir64");
  dirent64* entry = next(directory);
  if (entry != nullptr && interposed::Now().entry_types_unknown) entry->d_type = DT_UNKNOWN;
  return entry;
}

xmlTextReaderPtr xmlReaderWalker(xmlDocPtr document) {
  static auto* const next = interposed::Next<xmlTextReaderPtr(xmlDocPtr)>("xmlReaderWalker");
  return interposed::Now().walker_fails ? nullptr : next(document);
}

int xmlTextReaderRead(xmlTextReaderPtr reader) {
  static auto* const next = interposed::Next<int(xmlTextReaderPtr)>("xmlTextReaderRead");
  if (reader == nullptr) doubles::Current().RecordCall("xmlTextReaderRead(null)");
  std::optional<int>& nodes_to_read = interposed::Now().nodes_to_read;
  if (nodes_to_read && (*nodes_to_read)-- == 0) return -1;
  return next(reader);
}

int rename(const char* from, const char* to) noexcept {
  static auto* const next = interposed::Next<int(const char*, const char*)>("rename");
  doubles::Current().RecordCall(std::string("rename(") + from + ", " + to + ")");
  if (const auto error = interposed::Now().rename_error) {
    errno = *error;
    return -1;
  }
  return next(from, to);
}

int fsync(int file) {
  struct stat status;
  const bool open = fstat(file, &status) == 0;
  doubles::Current().RecordCall("fsync(" + (open ? std::to_string(status.st_size) : "not a file") + ")");
  return open ? 0 : -1;
}

void sync() noexcept { doubles::Current().RecordCall("sync()"); }

}  // extern "C"
#pragma GCC visibility pop
