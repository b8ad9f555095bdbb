/*
 * The package-info library: records of installed packages and applications. A text that a getter returns belongs to the
 * record that it was read from. All functions return 0 on success and a negative value on failure.
 */
#ifndef ORVEL_PKGMGR_INFO_H_
#define ORVEL_PKGMGR_INFO_H_

#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef void* pkgmgrinfo_appinfo_h;
typedef void* pkgmgrinfo_pkginfo_h;
typedef void* pkgmgrinfo_appinfo_metadata_filter_h;

/* Called once per application; `handle` lives until the call returns. Returns a negative value to end the enumeration.
 */
typedef int (*pkgmgrinfo_app_list_cb)(pkgmgrinfo_appinfo_h handle, void* userData);

/* A filter over all installed applications. The caller destroys what `create` returned. */
int pkgmgrinfo_appinfo_metadata_filter_create(pkgmgrinfo_appinfo_metadata_filter_h* filter);
/* Requires a metadata entry with `key` and `value`. Several requirements must all be met. */
int pkgmgrinfo_appinfo_metadata_filter_add(pkgmgrinfo_appinfo_metadata_filter_h filter, const char* key,
                                           const char* value);
int pkgmgrinfo_appinfo_metadata_filter_foreach(pkgmgrinfo_appinfo_metadata_filter_h filter,
                                               pkgmgrinfo_app_list_cb callback, void* userData);
int pkgmgrinfo_appinfo_metadata_filter_destroy(pkgmgrinfo_appinfo_metadata_filter_h filter);

/* Application records. The caller destroys what `get_appinfo` returned. */
int pkgmgrinfo_appinfo_get_appinfo(const char* appId, pkgmgrinfo_appinfo_h* handle);
int pkgmgrinfo_appinfo_get_root_path(pkgmgrinfo_appinfo_h handle, char** rootPath);
int pkgmgrinfo_appinfo_get_pkgid(pkgmgrinfo_appinfo_h handle, char** pkgId);
int pkgmgrinfo_appinfo_get_exec(pkgmgrinfo_appinfo_h handle, char** exec);
int pkgmgrinfo_appinfo_get_metadata_value(pkgmgrinfo_appinfo_h handle, const char* key, char** value);
int pkgmgrinfo_appinfo_destroy_appinfo(pkgmgrinfo_appinfo_h handle);

/* Package records, of the calling user or of user `uid`. The caller destroys what `get_*pkginfo` returned. */
int pkgmgrinfo_pkginfo_get_pkginfo(const char* pkgId, pkgmgrinfo_pkginfo_h* handle);
int pkgmgrinfo_pkginfo_get_usr_pkginfo(const char* pkgId, uid_t uid, pkgmgrinfo_pkginfo_h* handle);
int pkgmgrinfo_pkginfo_get_mainappid(pkgmgrinfo_pkginfo_h handle, char** mainAppId);
int pkgmgrinfo_pkginfo_get_type(pkgmgrinfo_pkginfo_h handle, char** type);
int pkgmgrinfo_pkginfo_destroy_pkginfo(pkgmgrinfo_pkginfo_h handle);

#ifdef __cplusplus
}
#endif

#endif
