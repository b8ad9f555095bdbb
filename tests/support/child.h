// Runs parts of a test in a new process, so that process-wide state of the code under test is fresh.
#ifndef TESTS_SUPPORT_CHILD_H_
#define TESTS_SUPPORT_CHILD_H_

#include <filesystem>
#include <functional>
#include <string>

namespace support {

// Runs `body` in a forked child. Its failures, an exception or a crash fail this test.
void InFreshProcess(const std::function<void()>& body);

// The same, with the fixed paths of the device root `root`. Skips the test with the reason if this machine cannot do
// that. Must be the last statement of a test.
void WithFixedPaths(const std::filesystem::path& root, const std::function<void()>& body);

// The line that orvelbox prints on standard error, once per command, when it works in place.
inline constexpr const char* kInPlaceNotice =
    "orvelbox: no namespaces here: working in place on /usr/share/dotnet.orvel and /opt/usr\n";

// That line if orvelbox works in place on this machine, otherwise an empty text.
std::string InPlaceNoticeHere();

// Permanently gives up root's right to ignore file permissions. Returns false on failure.
bool GiveUpPrivileges();

// Makes all writes of this process to files fail as on a full disk. For a child process.
void MakeFileWritesFail();

// Fails the test when memory was leaked. For a child process, in which the sanitizer's own leak check does not run.
void ExpectNoLeaks();

// The number of open descriptors of this process.
std::size_t OpenDescriptors();

}  // namespace support

#endif
