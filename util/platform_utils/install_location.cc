// Queries of the install location and the environment.
#include "morvath/install_location.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/affix.h"
#include "base/package_records.h"
#include "orvel/ovplatform.h"
#include "orvel/pkgmgr_installer.h"
#include "quarnel_util/quarnel_util.h"
#include "util/platform_utils/log_source.h"
#include "util/platform_utils/read_write_area.h"

namespace {

constexpr const char* kReleaseMarker = "/etc/release";
constexpr const char* kImageCreationVariable = "VARK_CROSSGEN2_ENABLED";
constexpr const char* kRpkType = "rpk";

void Print(const char* text) { std::fwrite(text, 1, std::strlen(text), stdout); }

}  // namespace

bool IsInReadWriteArea(const std::string& path) {
  const char* root = ovplatform_getenv(OVPLATFORM_RW_APPS_ROOT);
  return root == nullptr || Contains(path, root);
}

bool isReleaseVersion() { return access(kReleaseMarker, F_OK) == 0; }

bool isRunningInVARK() {
  const char* value = std::getenv(kImageCreationVariable);
  if (value == nullptr) return false;
  const bool inside = std::strcmp(value, "1") == 0;
  Print(inside ? "This is the code running inside the VARK.\n" : "This is the code running outside the VARK.\n");
  return inside;
}

bool isRWInstalledApp(const std::string& pkgId) {
  if (!IsInReadWriteArea(getRootPath(pkgId))) return false;
  LOG_INFO("It is a RWInstalled App");
  return true;
}

bool IsNeedToSkipAOT(const std::string& pkgId) { return isRunningInVARK() || !isRWInstalledApp(pkgId); }

// Does not ask for the image-creation environment: the shared cache is useful there as well.
bool IsNeedToSkipSAC(const std::string& pkgId) { return !isRWInstalledApp(pkgId); }

int pkgmgrGetPkgInfo(const std::string& pkgId, pkgmgrinfo_pkginfo_h* handle) {
  uid_t uid = 0;
  if (pkgmgr_installer_info_get_target_uid(&uid) < 0) {
    LOG_ERROR("Failed to get UID");
    return -1;
  }
  const int error = pkgmgrinfo_pkginfo_get_usr_pkginfo(pkgId.c_str(), uid, handle);
  if (error != 0) {
    LOG_ERROR("Failed to get pkginfo (%d)", error);
    return -1;
  }
  return 0;
}

bool isRPK(const std::string& pkgId) {
  pkgmgrinfo_pkginfo_h handle = nullptr;
  if (pkgmgrGetPkgInfo(pkgId, &handle) != 0) return false;
  const PackageRecord package(handle);
  char* type = nullptr;
  if (pkgmgrinfo_pkginfo_get_type(package.get(), &type) != 0 || type == nullptr) return false;
  return std::strncmp(type, kRpkType, std::strlen(kRpkType)) == 0;
}
