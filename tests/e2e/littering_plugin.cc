// A parser plug-in for tests that leaves things behind, as the package id asks for: "….litter" (INSTALL makes a file
// outside of the package), "….meddle" (UNDO changes a cache file). Otherwise every hook returns 0.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

bool Asks(const char* package_id, const char* for_what) {
  const char* suffix = std::strrchr(package_id, '.');
  return suffix != nullptr && std::strcmp(suffix, for_what) == 0;
}

void Append(const char* file) {
  const int opened = open(file, O_WRONLY | O_CREAT | O_APPEND, 0644);
  if (opened < 0 || write(opened, "x", 1) != 1) std::abort();
  close(opened);
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))

EXPORT int PKGMGR_PARSER_PLUGIN_INSTALL(void*, const char* package_id) {
  if (Asks(package_id, ".litter")) Append("/opt/usr/home/litter");
  return 0;
}
EXPORT int PKGMGR_PARSER_PLUGIN_UPGRADE(void*, const char*) { return 0; }
EXPORT int PKGMGR_PARSER_PLUGIN_UNINSTALL(void*, const char*) { return 0; }
EXPORT int PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL(void*, const char*) { return 0; }
EXPORT int PKGMGR_PARSER_PLUGIN_CLEAN(void*, const char*) { return 0; }
EXPORT int PKGMGR_PARSER_PLUGIN_UNDO(void*, const char* package_id) {
  if (Asks(package_id, ".meddle")) Append("/opt/usr/home/owner/share/dotnet/TPA.txt");
  return 0;
}
