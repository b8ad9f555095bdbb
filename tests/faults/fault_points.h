// Counts the calls that the code under test makes, and lets one of them end the process or fail. Which calls there are:
// file_calls.cc, memory_calls.cc, small_platform.cc. What is right afterwards is the tests' business.
#ifndef TESTS_FAULTS_FAULT_POINTS_H_
#define TESTS_FAULTS_FAULT_POINTS_H_

#include <functional>
#include <string>

namespace faults {

// Kinds of calls, to be added up.
inline constexpr unsigned kChanges = 1;   // what changes files: open for writing, write, fsync, rename, unlink, …
inline constexpr unsigned kReads = 2;     // what only looks at them: open, read, opendir, readdir, stat, lstat, access
inline constexpr unsigned kPlatform = 4;  // the platform's functions
inline constexpr unsigned kMemory = 8;    // operator new and libxml2's allocations

enum class Fate {
  kEnd,             // the process ends before the call
  kEndHalfWritten,  // the same, but half of what a write was to write is in the file
  kFail,            // the call fails, EIO where it has an errno
};

struct Plan {
  unsigned kinds = kChanges;
  Fate fate = Fate::kEnd;
  int at = 0;  // which of the counted calls, from 1; 0: none
};

struct Outcome {
  bool met = false;  // there was a call of that number
  std::string call;  // that call: "rename /opt/usr/…"
};

// File calls count when they concern what lies below one of the watched directories. The platform's fixed paths are
// watched from the beginning; a file called "log" never counts. What lies below `directory` is told as below `shown`.
void Watch(const std::string& directory, const std::string& shown);

// Runs `body` in a child process under the plan. Failed expectations and unexpected ends of the body are failures of
// this test.
Outcome Run(const Plan& plan, const std::function<void()>& body);

// In the body: calls count while one of these lives.
class Counting {
 public:
  Counting();
  ~Counting();
  Counting(const Counting&) = delete;
  Counting& operator=(const Counting&) = delete;
};

// Runs `body` once for each call that it makes, the plan's fate meeting the first, the second, …, and after each run
// `check`; the last run meets none. `prepare` comes before every run. Returns the calls that were met, in order.
std::vector<std::string> MeetEveryCall(Plan plan, const std::function<void()>& prepare,
                                       const std::function<void()>& body,
                                       const std::function<void(const Outcome&)>& check);

// Puts this process and its children under the plan for good; the fates that end end its whole process group.
void PutUnder(const Plan& plan);

// Lets libxml2's allocations count as memory calls, which operator new's are anyway. To be called before this process
// uses libxml2. False when that fails.
bool MakeXmlAllocationsFail();

// --- For the calls ---

enum class Verdict { kGoOn, kFail, kWriteHalf };

// Counts a call and says what is to become of it; ends the process where the plan says so. `path` may be null for a
// call that concerns none. Only who passes `can_be_half` gets kWriteHalf, writes half and calls End.
Verdict Meet(unsigned kind, const char* call, const char* path, bool can_be_half = false);

// Whether a call on this path would count at all.
bool Counts(const char* path);

[[noreturn]] void End();

}  // namespace faults

#endif
