// Writing the trace file.
#include "platform/host/trace_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <nlohmann/json.hpp>

#include "base/unique_fd.h"
#include "platform/host/files.h"
#include "platform/host/json.h"

namespace host {
namespace {

std::string EventText(char phase, const std::string& name) {
  using std::chrono::microseconds;
  // The steady clock is CLOCK_MONOTONIC, common to all processes.
  const auto now = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now().time_since_epoch());
  return JsonText({{"name", name},
                   {"ph", std::string(1, phase)},
                   {"pid", getpid()},
                   {"tid", syscall(SYS_gettid)},
                   {"ts", now.count()}});
}

}  // namespace

bool AppendTraceEvent(const std::filesystem::path& file, char phase, const std::string& name) {
  const std::string event = EventText(phase, name);
  const UniqueFd fd(open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666));
  struct stat status {};
  // The lock, released with the descriptor, lets only one process find the file empty.
  if (!fd || flock(fd.get(), LOCK_EX) != 0 || fstat(fd.get(), &status) != 0) return false;
  const int error = WriteAll(fd.get(), (status.st_size == 0 ? "[\n" : ",\n") + event);
  if (error == 0) return true;
  [[maybe_unused]] const int result = ftruncate(fd.get(), status.st_size);  // no half event stays
  return false;
}

}  // namespace host
