// The minimal cost of the plug-in's work: programs that do it for one package with known paths.
#ifndef BENCH_REFERENCE_H_
#define BENCH_REFERENCE_H_

namespace bench {

// kFloor: only the unavoidable system calls, including an lstat for each DLL; no log lines. kLimit: what the plug-in
// must do, with every log line and span formatted and the four catalogues filled, but an lstat only for files with a
// catalogued name, because the listing does not show whether they are still regular files.
enum class Reference { kFloor, kLimit };

// Does the assembly cache pass over the package.
void ReferencePass(Reference reference);

// Removes the package from both cache files.
void ReferenceRemove(Reference reference);

}  // namespace bench

#endif
