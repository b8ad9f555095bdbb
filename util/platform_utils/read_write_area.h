// The read-write area of the device.
#ifndef UTIL_PLATFORM_UTILS_READ_WRITE_AREA_H_
#define UTIL_PLATFORM_UTILS_READ_WRITE_AREA_H_

#include <string>

// Does `path` contain the root of read-write applications, anywhere? When that root is unknown, the answer is true:
// what may lie in the read-write area is treated as lying there.
bool IsInReadWriteArea(const std::string& path);

#endif
