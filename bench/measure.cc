// Measures one piece of work.
#include "bench/measure.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>

#include "bench/platform.h"

namespace {

long allocations = 0;

double CpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The kernel's fast counter is off by up to 256 KiB; the sum over all mappings is exact.
long ResidentKib() {
  std::ifstream rollup("/proc/self/smaps_rollup");
  for (std::string word; rollup >> word;) {
    long size = 0;
    if (word == "Rss:" && rollup >> size) return size;
  }
  return 0;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* malloc(std::size_t size) {
  ++allocations;
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  ++allocations;
  return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
  ++allocations;
  return __libc_realloc(memory, size);
}

__attribute__((noinline)) void measured_work(const std::function<void()>& work) { work(); }

}  // extern "C"
#pragma GCC visibility pop

void bench::Measure(const std::function<void()>& work) {
  const long memory_before = ResidentKib();
  const long allocations_before = allocations;
  const double begin = CpuSeconds();
  syscall(SYS_getppid);
  measured_work(work);
  syscall(SYS_getppid);
  const double seconds = CpuSeconds() - begin;
  std::printf(
      "{\"seconds\": %.9f, \"allocations\": %ld, \"memory_kib\": %ld, \"lines\": %ld, \"spans\": %ld, "
      "\"bytes\": %ld}\n",
      seconds, allocations - allocations_before, ResidentKib() - memory_before, Logged().lines, Logged().spans,
      Logged().bytes);
}
