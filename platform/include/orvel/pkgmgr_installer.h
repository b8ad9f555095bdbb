/* The package manager's installer library: which user the running installation is for. */
#ifndef ORVEL_PKGMGR_INSTALLER_H_
#define ORVEL_PKGMGR_INSTALLER_H_

#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Fills `uid` with the user that the running installation is for. Returns 0, or a negative value on failure. */
int pkgmgr_installer_info_get_target_uid(uid_t* uid);

#ifdef __cplusplus
}
#endif

#endif
