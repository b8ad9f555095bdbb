/* The path-configuration library. */
#ifndef ORVEL_OVPLATFORM_H_
#define ORVEL_OVPLATFORM_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Variables of ovplatform_getenv. OVPLATFORM_RW_APPS_ROOT: the directory under which read-write applications live. */
enum { OVPLATFORM_RW_APPS_ROOT = 27 };

/* Returns the value of `variable`, owned by the library, or null when it has none. */
const char* ovplatform_getenv(int variable);

#ifdef __cplusplus
}
#endif

#endif
