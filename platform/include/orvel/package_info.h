/* The package information service: the privileges that a package declares. */
#ifndef ORVEL_PACKAGE_INFO_H_
#define ORVEL_PACKAGE_INFO_H_

#include <stdbool.h> /* IWYU pragma: keep */

#ifdef __cplusplus
extern "C" {
#endif

typedef void* package_info_h;

/* Called once per privilege; `privilege` lives until the call returns. Returns false to end the iteration. */
typedef bool (*package_info_privilege_info_cb)(const char* privilege, void* userData);

/* Fills `handle` with a record of the package, owned by the caller. Returns 0, or non-zero for an unknown package. */
int package_info_create(const char* packageId, package_info_h* handle);

/* Calls `callback` for each privilege of the package, in the manifest's order. Returns 0, or non-zero on failure. */
int package_info_foreach_privilege_info(package_info_h handle, package_info_privilege_info_cb callback, void* userData);

/* Destroys the record. Returns 0, or non-zero when there is none. */
int package_info_destroy(package_info_h handle);

#ifdef __cplusplus
}
#endif

#endif
