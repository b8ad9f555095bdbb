// Assembly file helpers for the launcher's tools: names, path lists, cache texts, labels and owners.
#ifndef MORVATH_ASSEMBLY_FILES_H_
#define MORVATH_ASSEMBLY_FILES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "morvath/export.h"

// Returns `name` without its extension ".dll" or ".exe" and then without the native-image mark ".ni". The case of ASCII
// letters is ignored. A name of four characters or fewer is returned unchanged.
ORVEL_EXPORT std::string stripNiDLL(const std::string& name);

// Appends the absolute form of every entry of the path list `paths` to `out`, in order. If it throws, `out` is
// unchanged.
ORVEL_EXPORT void addPlatformAssembliesPaths(const std::string& paths, std::vector<std::string>& out);

// Logs every entry of the path list, one line each.
ORVEL_EXPORT void printAll(const std::string& paths);

// Does the content of a cache file lack its start or end marker?
ORVEL_EXPORT bool isCrashed(std::string content);

// Sets the access label of a file. On failure, logs an error and returns false.
ORVEL_EXPORT bool setSmack(const std::string& path, const std::string& label);

// Gives `setPath` the access label, owner and group of `getPath`. With `isSymlink`, sets them on the link itself. A
// failure to set one is reported on standard error. A label that cannot be read is skipped.
ORVEL_EXPORT void updateAssemblyInfo(const std::string& getPath, const std::string& setPath, bool isSymlink);

// The path of the running program, at most its first 4095 bytes; empty when it cannot be read.
ORVEL_EXPORT std::string readSelfPath();

// The size of the file in bytes; 0 when the file does not exist.
ORVEL_EXPORT uint64_t getFileSize(const std::string& path);

// Writes the decimal digits of `value` and a NUL into `buf`, which the caller provides large enough; does nothing when
// `buf` is null. Safe in a signal handler: it allocates nothing and calls nothing. For 0 it writes no digit. `value`
// must not be negative.
ORVEL_EXPORT void itoaForSignalHandler(int value, char* buf);

#endif
