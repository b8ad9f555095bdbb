// Changes the machine as the test's process sees it.
#include "tests/host/machine.h"

#include <fcntl.h>
#include <grp.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "tests/support/files.h"

namespace machine {
namespace {

namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;
constexpr const char* kEmptied[] = {"/opt", "/usr/share", "/etc", "/run"};

constexpr unsigned kNamespaceFlags =
    CLONE_NEWNS | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET | CLONE_NEWIPC | CLONE_NEWUTS | CLONE_NEWCGROUP;

void Check(bool success, const std::string& what) {
  if (!success) throw std::runtime_error("cannot " + what + ": " + std::generic_category().message(errno));
}

void WriteProc(const char* file, const std::string& text) {
  const int fd = open(file, O_WRONLY | O_CLOEXEC);
  Check(fd >= 0 && write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
        std::string("write ") + file);
  close(fd);
}

void BecomeRootOfNamespaces() {
  const auto uid = std::to_string(geteuid());
  const auto gid = std::to_string(getegid());
  if (geteuid() == 0 && unshare(CLONE_NEWNS) == 0) return;
  Check(unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "make namespaces");
  WriteProc("/proc/self/setgroups", "deny");
  WriteProc("/proc/self/uid_map", "0 " + uid + " 1");
  WriteProc("/proc/self/gid_map", "0 " + gid + " 1");
}

void CoverWithTmpfs(const char* directory) {
  Check(mount("tmpfs", directory, "tmpfs", 0, "mode=0755") == 0, std::string("cover ") + directory);
}

}  // namespace

void EnterEmptied() {
  BecomeRootOfNamespaces();
  Check(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "detach the mounts");
  for (const char* directory : kEmptied) CoverWithTmpfs(directory);
  Check(mkdir("/run/lock", 01777) == 0, "make /run/lock");
}

std::string ObstacleToEmptied(const std::string& needed) {
  for (const std::string directory : kEmptied) {
    if (needed.rfind(directory + "/", 0) == 0) return needed + " would be hidden";
  }
  int ends[2];
  Check(pipe(ends) == 0, "make a pipe");
  const pid_t child = fork();
  if (child == 0) {
    try {
      EnterEmptied();
    } catch (const std::exception& error) {
      const std::string text = error.what();
      [[maybe_unused]] const ssize_t written = write(ends[1], text.data(), text.size());
    }
    _exit(0);
  }
  close(ends[1]);
  char text[512] = {};
  const ssize_t length = read(ends[0], text, sizeof text - 1);
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return length > 0 ? text : "";
}

// "/" itself cannot be changed, so the process moves to a tmpfs that shows all of it except "/opt".
void RemoveOpt() {
  const fs::path fresh = "/run/lock";
  CoverWithTmpfs(fresh.c_str());
  for (const auto& entry : fs::directory_iterator("/")) {
    const fs::path copy = fresh / entry.path().filename();
    if (entry.path() == "/opt") continue;
    if (entry.is_symlink()) {
      fs::copy_symlink(entry.path(), copy);
    } else if (entry.is_directory()) {
      fs::create_directory(copy);
      Check(mount(entry.path().c_str(), copy.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0,
            "bind " + copy.string());
    }
  }
  Check(syscall(SYS_pivot_root, fresh.c_str(), (fresh / "mnt").c_str()) == 0 && chdir("/") == 0, "go to the new root");
}

void BecomeOrdinaryUser() {
  if (geteuid() != 0) return;
  Check(setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0, "become nobody");
}

namespace {

// Runs every system call of this process and its children through `program`, for good.
void FilterCalls(sock_filter* program, std::size_t length) {
  const sock_fprog filter{static_cast<unsigned short>(length), program};
  Check(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0, "give up new privileges");
  Check(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0, "refuse system calls");
}

}  // namespace

void RefuseMounts() {
  sock_filter program[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_mount, 1, 0),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
  };
  FilterCalls(program, std::size(program));
}

void RefuseNamespaces() {
  constexpr auto kFlagsOfClone = offsetof(seccomp_data, args);  // the lower half on a little-endian machine
  // The jumps count the instructions to skip, up to one of the three results at the end.
  sock_filter program[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_unshare, 9, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_setns, 8, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_mount, 7, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_umount2, 6, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_pivot_root, 5, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone3, 5, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 0, 2),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kFlagsOfClone),
      BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, kNamespaceFlags, 1, 0),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),  // callers then use clone, whose flags can be examined
  };
  FilterCalls(program, std::size(program));
}

}  // namespace machine
