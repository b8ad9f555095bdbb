// Marks what the libraries built here make visible; everything else is hidden.
#ifndef UTIL_EXPORT_H_
#define UTIL_EXPORT_H_

#define ORVEL_EXPORT __attribute__((visibility("default")))

#endif
