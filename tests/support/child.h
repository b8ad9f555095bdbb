// Runs parts of a test in a process of their own, so that what is process-wide in the code under test is fresh.
#ifndef TESTS_SUPPORT_CHILD_H_
#define TESTS_SUPPORT_CHILD_H_

#include <filesystem>
#include <functional>
#include <string>

namespace support {

// Runs `body` in a forked child. Its failures are shown and fail this test, as does an exception or a crash.
void InFreshProcess(const std::function<void()>& body);

// The same with the platform's fixed paths laid over the device root `root`. Skips the test, with the reason, where
// this machine cannot do that; to be the last statement of a test.
void WithFixedPaths(const std::filesystem::path& root, const std::function<void()>& body);

// What orvelbox says on standard error, once for a command, where it has to work in place.
inline constexpr const char* kInPlaceNotice =
    "orvelbox: no namespaces here: working in place on /usr/share/dotnet.orvel and /opt/usr\n";

// That line where this machine is such a one, else nothing.
std::string InPlaceNoticeHere();

// Takes from this process for good what root may do beyond the permissions of files. False when that fails.
bool GiveUpPrivileges();

// Lets this process write nothing into files any more: what it writes fails as on a full disk. For a child process.
void LeaveNoRoomInFiles();

// Fails the test when memory was leaked; for a child process, which ends without the sanitizer's own look for leaks.
void ExpectNoLeaks();

// How many descriptors this process has.
std::size_t OpenDescriptors();

}  // namespace support

#endif
