// Where the read-write area is; who asks decides what follows.
#ifndef UTIL_PLATFORM_UTILS_READ_WRITE_AREA_H_
#define UTIL_PLATFORM_UTILS_READ_WRITE_AREA_H_

#include <string>

// Does `path` contain the root of read-write applications, anywhere? An unknown root counts as being everywhere: what
// may be in the read-write area is treated as being there.
bool IsInReadWriteArea(const std::string& path);

#endif
