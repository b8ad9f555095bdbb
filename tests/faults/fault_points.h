// Counts the calls of the code under test, and makes one of them end the process or fail. The calls are defined in
// file_calls.cc, memory_calls.cc and small_platform.cc. The tests check the results.
#ifndef TESTS_FAULTS_FAULT_POINTS_H_
#define TESTS_FAULTS_FAULT_POINTS_H_

#include <functional>
#include <string>

namespace faults {

// Kinds of calls; values can be added.
inline constexpr unsigned kChanges = 1;  // calls that change files: open for writing, write, fsync, rename, unlink, …
inline constexpr unsigned kReads = 2;    // calls that only read: open, read, opendir, readdir, stat, lstat, access
inline constexpr unsigned kPlatform = 4;  // the platform's functions
inline constexpr unsigned kMemory = 8;    // operator new and libxml2's allocations

enum class Fate {
  kEnd,             // the process ends before the call
  kEndHalfWritten,  // the same, but half of the data of a write is in the file
  kFail,            // the call fails, with EIO if it sets errno
};

struct Plan {
  unsigned kinds = kChanges;
  Fate fate = Fate::kEnd;
  int at = 0;  // the number of the counted call, from 1; 0: none
};

struct Outcome {
  bool met = false;  // a call with that number was made
  std::string call;  // that call: "rename /opt/usr/…"
};

// File calls count when they concern a path below a watched directory. The platform's fixed paths are always watched; a
// file called "log" never counts. Paths below `directory` are reported as below `shown`.
void Watch(const std::string& directory, const std::string& shown);

// Runs `body` in a child process under the plan. Failed expectations and unexpected ends of the body fail this test.
Outcome Run(const Plan& plan, const std::function<void()>& body);

// In the body: calls are counted during its lifetime.
class Counting {
 public:
  Counting();
  ~Counting();
  Counting(const Counting&) = delete;
  Counting& operator=(const Counting&) = delete;
};

// Runs `body` once for each call that it makes, with the plan's fate for the first, the second, … call, and `check`
// after each run; the last run reaches none. `prepare` runs before every run. Returns the calls, in order.
std::vector<std::string> MeetEveryCall(Plan plan, const std::function<void()>& prepare,
                                       const std::function<void()>& body,
                                       const std::function<void(const Outcome&)>& check);

// Applies the plan to this process and its children until they end; the fates that end the process end its process
// group.
void PutUnder(const Plan& plan);

// Makes libxml2's allocations count as memory calls, like those of operator new. Call it before this process uses
// libxml2. Returns false on failure.
bool MakeXmlAllocationsFail();

// --- For the calls ---

enum class Verdict { kGoOn, kFail, kWriteHalf };

// Counts a call and returns what must happen to it; ends the process if the plan says so. `path` is null for a call
// without one. Only with `can_be_half` may it return kWriteHalf; the caller then writes half and calls End.
Verdict Meet(unsigned kind, const char* call, const char* path, bool can_be_half = false);

// Does a call on this path count?
bool Counts(const char* path);

[[noreturn]] void End();

}  // namespace faults

#endif
