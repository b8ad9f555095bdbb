// What the plug-in's work costs at least: lean programs that do it for one package on known paths.
#ifndef BENCH_REFERENCE_H_
#define BENCH_REFERENCE_H_

namespace bench {

// kFloor: the unavoidable calls to the kernel, an lstat for each DLL among them, and no log lines. kLimit: what the
// plug-in has to do, with every log line and span formatted and the four catalogues filled, but an lstat only for what
// no listing can tell: that a file with a catalogued name is still a regular one.
enum class Reference { kFloor, kLimit };

// The assembly cache pass over the package.
void ReferencePass(Reference reference);

// The package taken out of both cache files.
void ReferenceRemove(Reference reference);

}  // namespace bench

#endif
