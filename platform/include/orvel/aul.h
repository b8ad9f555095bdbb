/* The application utility library: candidate loaders. */
#ifndef ORVEL_AUL_H_
#define ORVEL_AUL_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Asks the platform to restart the candidate loader `loaderName`. Returns 0, or non-zero when it did not start. */
int aul_restart_loader(const char* loaderName);

#ifdef __cplusplus
}
#endif

#endif
