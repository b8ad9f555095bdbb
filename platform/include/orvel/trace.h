/* The platform's trace spans. */
#ifndef ORVEL_TRACE_H_
#define ORVEL_TRACE_H_

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Opens a span of the calling thread, named by the printf format `name` and what follows. Spans nest. The format
 * is not checked by the compiler: callers hand over texts that are made at run time.
 */
void trace_begin(const char* name, ...);

/* Closes the innermost open span of the calling thread; without an open span nothing happens. */
void trace_end(void);

#ifdef __cplusplus
}
#endif

#endif
