// Whole files, read and written, with every error as a DeviceError.
#ifndef ORVEL_PLATFORM_HOST_FILES_H_
#define ORVEL_PLATFORM_HOST_FILES_H_

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

// The system's text for `error`.
std::string ErrorText(int error);

// What usually helps against `error`, as the end of a sentence ("; free some space and try again"), or nothing.
std::string_view UsualWayOut(int error);

// Throws a DeviceError "FILE: cannot ACTION: TEXT OF ERROR", followed by the way out where there is a usual one.
[[noreturn]] void ThrowFileError(const std::filesystem::path& file, std::string_view action, int error);

// Does `work` and gives its result; an error of the standard library becomes one of ThrowFileError. `path` is named
// where the library names none.
template <typename Work>
auto WithFileErrors(const std::filesystem::path& path, std::string_view action, const Work& work) {
  try {
    return work();
  } catch (const std::filesystem::filesystem_error& error) {
    ThrowFileError(error.path1().empty() ? path : error.path1(), action, error.code().value());
  }
}

// Reads the whole file. Throws DeviceError.
std::string ReadFile(const std::filesystem::path& file);

// Appends what is still to be read to `content`. Returns 0, or the error number of the read that failed.
int ReadToEnd(int fd, std::string& content);
// What an open file holds from its beginning on, as far as it can be read.
std::string ReadFromStart(int fd);

// Writes all of `data`, in as many writes as it takes. Returns 0, or the error number of the write that failed.
int WriteAll(int fd, std::string_view data);

// Makes a new file holding `content`. Throws DeviceError, also when the file exists already; a file that could not be
// completed is removed again.
void CreateFile(const std::filesystem::path& file, std::string_view content);

// Makes the directory `path` and those above it. Throws DeviceError.
void MakeDirectory(const std::filesystem::path& path);

// Puts `content` in the place of the file in one step: a reader sees the old file or the new one, also after a crash.
// Throws DeviceError and then leaves the old file.
void ReplaceFile(const std::filesystem::path& file, std::string_view content);

}  // namespace host

#endif
