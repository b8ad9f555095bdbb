// Traces a measured program.
#include "tests/performance/system_calls.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

#include "base/unique_fd.h"

namespace {

constexpr int kUntraceable = 125;

// In the child: waits for the tracer, then runs the program with its output in `output`.
[[noreturn]] void Become(const std::string& program, const std::string& action, int output) {
  if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(kUntraceable);
  dup2(output, STDOUT_FILENO);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nowhere, STDERR_FILENO);
  execl(program.c_str(), program.c_str(), action.c_str(), nullptr);
  _exit(127);
}

// Continues to the next stop at a system call. At the end of the process returns false and its status.
bool NextSystemCall(pid_t child, int& status) {
  for (int signal = 0;;) {
    ptrace(PTRACE_SYSCALL, child, nullptr, signal);
    if (waitpid(child, &status, 0) != child || WIFEXITED(status) || WIFSIGNALED(status)) return false;
    if (WSTOPSIG(status) == (SIGTRAP | 0x80)) return true;
    signal = WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
  }
}

bool IsMark(pid_t child) {
  __ptrace_syscall_info info{};
  ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
  return info.entry.nr == SYS_getppid;
}

// Traces the child to its end. Returns the number of calls between the two marks.
long CountUntilEnd(pid_t child, int& status) {
  long calls = 0;
  int marks = 0;
  while (NextSystemCall(child, status)) {
    if (IsMark(child)) {
      ++marks;
    } else if (marks == 1) {
      ++calls;
    }
    if (!NextSystemCall(child, status)) break;  // the end of the same call
  }
  return calls;
}

std::string ReadAll(int file) {
  std::string text;
  std::array<char, 4096> buffer;
  for (ssize_t count = 0; (count = read(file, buffer.data(), buffer.size())) > 0;) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

std::optional<MeasuredRun> RunTraced(const std::string& program, const std::string& action) {
  std::array<int, 2> ends;
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const UniqueFd output(ends[0]);
  const pid_t child = fork();
  if (child == 0) Become(program, action, ends[1]);
  close(ends[1]);
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kUntraceable) return std::nullopt;
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  const long calls = CountUntilEnd(child, status);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error(program + " failed");
  return MeasuredRun{calls, ReadAll(output.get())};
}
