// Marks the symbols that the libraries built here export; all others are hidden.
#ifndef MORVATH_EXPORT_H_
#define MORVATH_EXPORT_H_

#define ORVEL_EXPORT __attribute__((visibility("default")))

#endif
