// plain_container COMMAND…: runs a command as in a container without special rights, where the kernel refuses
// namespaces and mounts. Everything else is unchanged.
#include <unistd.h>

#include <cstdio>
#include <exception>

#include "tests/host/machine.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fputs("usage: plain_container COMMAND…\n", stderr);
    return 2;
  }
  try {
    machine::RefuseNamespaces();
    execvp(argv[1], argv + 1);
    std::perror(argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "plain_container: %s\n", error.what());
  }
  return 127;
}
