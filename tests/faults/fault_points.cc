// The plan and its counter, in memory shared with child processes.
#include "tests/faults/fault_points.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <vector>

namespace faults {

namespace {

constexpr int kMostDirectories = 8;
constexpr int kUnhandled = 99;

// Both with a trailing slash.
struct Directory {
  char path[256];
  char shown[256];
};

// No dynamic memory: it is read inside operator new.
struct State {
  bool counting = false;
  unsigned kinds = 0;
  Fate fate = Fate::kEnd;
  int at = 0;
  int count = 0;
  bool met = false;
  char call[512] = {};
  int directories = 2;
  Directory below[kMostDirectories] = {{"/opt/usr/", "/opt/usr/"},
                                       {"/usr/share/dotnet.orvel/", "/usr/share/dotnet.orvel/"}};
};

State& Shared() {
  static State* const state = [] {
    void* memory = mmap(nullptr, sizeof(State), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) std::abort();
    return new (memory) State;
  }();
  return *state;
}

void Adopt(const Plan& plan) {
  State& state = Shared();
  state.counting = false;
  state.kinds = plan.kinds;
  state.fate = plan.fate;
  state.at = plan.at;
  state.count = 0;
  state.met = false;
  state.call[0] = '\0';
}

void FlushOutput() {
  std::cout.flush();
  std::fflush(nullptr);
}

// The code of the child process. Returns its exit status.
int RunAsChild(const std::function<void()>& body) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  setpgid(0, 0);
  try {
    body();
  } catch (const std::exception& error) {
    ADD_FAILURE() << "an exception left the body: " << error.what();
  }
  FlushOutput();
  return testing::Test::HasFailure() ? 1 : 0;
}

// The plan ends the process by SIGKILL after the call was reached.
void ExpectGoodEnd(int status) {
  const State& state = Shared();
  const bool planned = state.met && state.fate != Fate::kFail;
  if (planned && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) return;
  if (!planned && WIFEXITED(status) && WEXITSTATUS(status) == 0) return;
  ADD_FAILURE() << "the body ended with wait status " << status << " after meeting: " << state.call;
}

bool EndsWith(const char* text, const char* end) {
  const std::size_t length = std::strlen(text);
  return length >= std::strlen(end) && std::strcmp(text + length - std::strlen(end), end) == 0;
}

// The watched directory that contains the path, or null.
const Directory* DirectoryOf(const char* path) {
  const State& state = Shared();
  for (int i = 0; i < state.directories; ++i) {
    if (std::strncmp(path, state.below[i].path, std::strlen(state.below[i].path)) == 0) return &state.below[i];
  }
  return nullptr;
}

// Records the call that was reached. The path lies below a watched directory.
void Note(const char* call, const char* path) {
  State& state = Shared();
  if (path == nullptr) {
    std::snprintf(state.call, sizeof state.call, "%s", call);
  } else {
    const Directory* directory = DirectoryOf(path);
    std::snprintf(state.call, sizeof state.call, "%s %s%s", call, directory->shown,
                  path + std::strlen(directory->path));
  }
}

}  // namespace

void Watch(const std::string& directory, const std::string& shown) {
  State& state = Shared();
  if (DirectoryOf((directory + "/").c_str()) != nullptr) return;
  if (state.directories == kMostDirectories) std::abort();
  Directory& watched = state.below[state.directories++];
  std::snprintf(watched.path, sizeof watched.path, "%s/", directory.c_str());
  std::snprintf(watched.shown, sizeof watched.shown, "%s/", shown.c_str());
}

Outcome Run(const Plan& plan, const std::function<void()>& body) {
  Adopt(plan);
  FlushOutput();
  const pid_t child = fork();
  if (child == 0) _exit(RunAsChild(body));
  int status = kUnhandled;
  if (child < 0 || waitpid(child, &status, 0) != child) ADD_FAILURE() << "no child process could be run";
  Shared().counting = false;
  ExpectGoodEnd(status);
  return {Shared().met, Shared().call};
}

Counting::Counting() { Shared().counting = true; }

Counting::~Counting() { Shared().counting = false; }

std::vector<std::string> MeetEveryCall(Plan plan, const std::function<void()>& prepare,
                                       const std::function<void()>& body,
                                       const std::function<void(const Outcome&)>& check) {
  std::vector<std::string> calls;
  for (plan.at = 1;; ++plan.at) {
    prepare();
    const Outcome outcome = Run(plan, body);
    const testing::ScopedTrace trace(__FILE__, __LINE__, "call " + std::to_string(plan.at) + ": " + outcome.call);
    check(outcome);
    if (!outcome.met || testing::Test::HasFailure()) return calls;
    calls.push_back(outcome.call);
  }
}

void PutUnder(const Plan& plan) {
  setpgid(0, 0);
  Adopt(plan);
  Shared().counting = true;
}

bool Counts(const char* path) { return Shared().counting && !EndsWith(path, "/log") && DirectoryOf(path) != nullptr; }

Verdict Meet(unsigned kind, const char* call, const char* path, bool can_be_half) {
  State& state = Shared();
  if (!state.counting || (state.kinds & kind) == 0 || (path != nullptr && !Counts(path))) return Verdict::kGoOn;
  if (++state.count != state.at) return Verdict::kGoOn;
  state.met = true;
  Note(call, path);
  if (state.fate == Fate::kFail) return Verdict::kFail;
  if (state.fate == Fate::kEndHalfWritten && can_be_half) return Verdict::kWriteHalf;
  End();
}

void End() {
  kill(0, SIGKILL);
  for (;;) pause();
}

}  // namespace faults
