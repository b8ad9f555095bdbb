// Reading and writing whole files. Every error is a DeviceError.
#ifndef ORVEL_PLATFORM_HOST_FILES_H_
#define ORVEL_PLATFORM_HOST_FILES_H_

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace host {

// The system's text for `error`.
std::string ErrorText(int error);

// The usual remedy for `error` as the end of a sentence ("; free some space and try again"); empty when there is none.
std::string_view UsualWayOut(int error);

// Throws a DeviceError "FILE: cannot ACTION: ERROR TEXT", followed by the usual remedy if there is one.
[[noreturn]] void ThrowFileError(const std::filesystem::path& file, std::string_view action, int error);

// Calls `work` and returns its result. Turns an error of the standard library into ThrowFileError's, with `path` when
// the library names no path.
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

// Appends the unread rest to `content`. Returns 0, or the error number of the failed read.
int ReadToEnd(int fd, std::string& content);
// The content of an open file from its start, as far as it can be read.
std::string ReadFromStart(int fd);

// Writes all of `data`, with several writes if necessary. Returns 0, or the error number of the failed write.
int WriteAll(int fd, std::string_view data);

// Creates a file with `content`. Throws DeviceError, also when the file exists already. Removes a file that could not
// be completed.
void CreateFile(const std::filesystem::path& file, std::string_view content);

// Creates the directory `path` and its missing parents. Throws DeviceError.
void MakeDirectory(const std::filesystem::path& path);

// Replaces the file in one step: a reader sees the old content or the new, also after a crash. On failure throws
// DeviceError and keeps the old file.
void ReplaceFile(const std::filesystem::path& file, std::string_view content);
// Removes what killed processes left of new versions of `file`.
void RemoveUnfinished(const std::filesystem::path& file);

}  // namespace host

#endif
