/* The Smack security-label library. */
#ifndef ORVEL_SMACK_H_
#define ORVEL_SMACK_H_

#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

enum smack_label_type { SMACK_LABEL_ACCESS = 0 };

/* Sets the label of the file at `path`; the `l` form labels a symbolic link itself. Returns 0, negative on failure. */
int smack_setlabel(const char* path, const char* label, enum smack_label_type type);
int smack_lsetlabel(const char* path, const char* label, enum smack_label_type type);

/*
 * Reads the label of the file at `path` into `label`, allocated with malloc; the caller frees it. The `l` form reads
 * the label of a symbolic link itself. Returns the length of the label in bytes, negative on failure.
 */
ssize_t smack_getlabel(const char* path, char** label, enum smack_label_type type);
ssize_t smack_lgetlabel(const char* path, char** label, enum smack_label_type type);

#ifdef __cplusplus
}
#endif

#endif
