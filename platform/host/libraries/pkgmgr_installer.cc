// liborvel_pkgmgr_installer: on a desk, an installation is for the user that runs it.
#include "orvel/pkgmgr_installer.h"

#include <unistd.h>

int pkgmgr_installer_info_get_target_uid(uid_t* uid) {
  if (uid == nullptr) return -1;
  *uid = getuid();
  return 0;
}
