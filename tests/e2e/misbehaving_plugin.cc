// A plug-in for tests. The package id selects what its hooks do: "….crash", "….throw", "….exit", "….wait", "….spoil"
// (CLEAN damages the cache file and crashes), "….stay" (UNINSTALL fails), "….litter" (INSTALL creates a file outside of
// the package), "….meddle" (UNDO changes a cache file). For other ids they return 0.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

bool Asks(const char* package_id, const char* for_what) {
  const std::size_t length = std::strlen(for_what);
  const std::size_t whole = std::strlen(package_id);
  return whole >= length && std::strcmp(package_id + whole - length, for_what) == 0;
}

void Crash() {
  std::signal(SIGSEGV, SIG_DFL);  // a sanitizer would turn the signal into an exit
  raise(SIGSEGV);
}

// Reports through one pipe that the hook runs, then waits for a byte from the other one.
void Wait() {
  char byte = 0;
  const int started = open(std::getenv("TEST_STARTED"), O_WRONLY);
  if (write(started, &byte, 1) != 1) std::abort();
  close(started);
  const int going_on = open(std::getenv("TEST_GO_ON"), O_RDONLY);
  if (read(going_on, &byte, 1) != 1) std::abort();
  close(going_on);
}

void Write(const char* file, int flags) {
  const int opened = open(file, O_WRONLY | O_CREAT | flags, 0644);
  if (opened < 0 || write(opened, "spoilt", 6) != 6) std::abort();
  close(opened);
}

void SpoilCache() {
  unlink("/opt/usr/home/owner/share/dotnet/TPA.txt");
  Write("/opt/usr/home/owner/share/dotnet/CoBA.txt", O_TRUNC);
  Crash();
}

int Behave(const char* package_id) {
  if (Asks(package_id, ".crash")) Crash();
  if (Asks(package_id, ".throw")) throw std::runtime_error("out of\ncheese");
  if (Asks(package_id, ".exit")) std::_Exit(7);
  if (Asks(package_id, ".wait")) Wait();
  if (Asks(package_id, ".litter")) Write("/opt/usr/home/litter", O_APPEND);
  return 0;
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))

EXPORT int PKGMGR_PARSER_PLUGIN_INSTALL(void*, const char* package_id) { return Behave(package_id); }
EXPORT int PKGMGR_PARSER_PLUGIN_UPGRADE(void*, const char* package_id) { return Behave(package_id); }
EXPORT int PKGMGR_PARSER_PLUGIN_UNINSTALL(void*, const char* package_id) { return Asks(package_id, ".stay") ? 3 : 0; }
EXPORT int PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL(void*, const char*) { return 0; }
EXPORT int PKGMGR_PARSER_PLUGIN_UNDO(void*, const char* package_id) {
  if (Asks(package_id, ".meddle")) Write("/opt/usr/home/owner/share/dotnet/TPA.txt", O_APPEND);
  return 0;
}
EXPORT int PKGMGR_PARSER_PLUGIN_CLEAN(void*, const char* package_id) {
  if (Asks(package_id, ".spoil")) SpoilCache();
  return 0;
}
