// liborvel_aul: starts the desk's candidate loader, a program in the same directory as this library.
#include "orvel/aul.h"

#include <dlfcn.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "platform/host/c_boundary.h"

namespace {

constexpr const char* kKnownLoader = "dotnet-loader-inhouse";

std::filesystem::path DirectoryOfThisLibrary() {
  Dl_info info{};
  if (dladdr(&kKnownLoader, &info) == 0 || info.dli_fname == nullptr) return {};
  return std::filesystem::path(info.dli_fname).parent_path();
}

// Runs the program to its end. Returns 0 when its exit status was 0.
int RunProgram(const std::filesystem::path& program) {
  std::string name = program.string();
  char* arguments[] = {name.data(), nullptr};
  pid_t child = 0;
  if (posix_spawn(&child, name.c_str(), nullptr, nullptr, arguments, environ) != 0) return -1;
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : -1;
}

}  // namespace

int aul_restart_loader(const char* loaderName) {
  if (loaderName == nullptr || std::strcmp(loaderName, kKnownLoader) != 0) return -1;
  return host::AnswerOr(-1, [] { return RunProgram(DirectoryOfThisLibrary() / kKnownLoader); });
}
