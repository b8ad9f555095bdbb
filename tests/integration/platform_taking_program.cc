// A program with its own platform functions, like a test by the platform's vendor. It loads the plug-in and prints
// which of its functions the plug-in called.
#include <dlfcn.h>
#include <libxml/tree.h>

#include <cstdio>
#include <string>

#include "orvel/aul.h"
#include "orvel/dlog.h"
#include "orvel/trace.h"

namespace {

int log_lines = 0;
int spans_begun = 0;
int spans_ended = 0;

}  // namespace

#pragma GCC visibility push(default)
int __dlog_print(int, int, const char*, const char*, ...) {
  ++log_lines;
  return 0;
}

void trace_begin(const char*, ...) { ++spans_begun; }

void trace_end(void) { ++spans_ended; }

int aul_restart_loader(const char* loaderName) {
  std::printf("loader restarted: %s\n", loaderName);
  return -1;
}

std::string getRootPath(const std::string& pkgId);
std::string getRootPath(const std::string& pkgId) {
  std::printf("root asked: %s\n", pkgId.c_str());
  return "";
}
#pragma GCC visibility pop

int main() {
  void* plugin = dlopen(MORVATH_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  if (plugin == nullptr) {
    std::printf("%s\n", dlerror());
    return 1;
  }
  const auto cleanup = reinterpret_cast<int (*)(xmlDocPtr, const char*)>(dlsym(plugin, "PKGMGR_PARSER_PLUGIN_CLEANUP"));
  const auto recover =
      reinterpret_cast<int (*)(xmlDocPtr, const char*)>(dlsym(plugin, "PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL"));
  const auto restart = reinterpret_cast<void (*)()>(dlsym(plugin, "_Z29restartDotnetCandidateProcessv"));
  std::printf("CLEANUP: %d\n", cleanup(nullptr, "org.pkg"));
  recover(nullptr, "org.pkg");
  restart();
  std::printf("restart: done\n");
  std::printf("log lines: %d\n", log_lines);
  std::printf("spans: %d begun, %d ended\n", spans_begun, spans_ended);
  return 0;
}
