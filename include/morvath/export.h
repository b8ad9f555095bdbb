// Marks what the libraries built here make visible; everything else is hidden.
#ifndef MORVATH_EXPORT_H_
#define MORVATH_EXPORT_H_

#define ORVEL_EXPORT __attribute__((visibility("default")))

#endif
