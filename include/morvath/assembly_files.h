// Helpers of the launcher's tools for assembly files: names, path lists, cache texts, labels and owners.
#ifndef MORVATH_ASSEMBLY_FILES_H_
#define MORVATH_ASSEMBLY_FILES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "morvath/export.h"

// `name` without its extension ".dll" or ".exe" and then without the native-image mark ".ni", in any case (of ASCII
// letters). A name of four characters or fewer stays as it is.
ORVEL_EXPORT std::string stripNiDLL(const std::string& name);

// Appends the absolute form of every entry of the path list `paths` to `out`, in order. When it throws, `out` is as it
// was.
ORVEL_EXPORT void addPlatformAssembliesPaths(const std::string& paths, std::vector<std::string>& out);

// Logs every entry of the path list, a line each.
ORVEL_EXPORT void printAll(const std::string& paths);

// Does the content of a cache file lack its start or end marker?
ORVEL_EXPORT bool isCrashed(std::string content);

// Sets the access label of a file. False, after an error line, when that failed.
ORVEL_EXPORT bool setSmack(const std::string& path, const std::string& label);

// Gives `setPath` the access label, owner and group of `getPath`; `isSymlink`: label and own the link itself. Failures
// to set show on standard error; a label that cannot be read is passed over.
ORVEL_EXPORT void updateAssemblyInfo(const std::string& getPath, const std::string& setPath, bool isSymlink);

// The path of the running program, at most 4095 bytes of it; empty when it cannot be told.
ORVEL_EXPORT std::string readSelfPath();

// The size of the file in bytes; 0 when there is none.
ORVEL_EXPORT uint64_t getFileSize(const std::string& path);

// Writes the decimal digits of `value` and a NUL into `buf`, the caller's, large enough for both; nothing into a null
// one. For use in a signal handler: it allocates nothing and calls nothing. 0 gives no digit at all; negative values
// are not meant to be passed.
ORVEL_EXPORT void itoaForSignalHandler(int value, char* buf);

#endif
