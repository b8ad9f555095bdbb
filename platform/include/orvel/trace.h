/* The platform's trace spans. */
#ifndef ORVEL_TRACE_H_
#define ORVEL_TRACE_H_

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Opens a span of the calling thread; its name is formatted like printf. Spans nest. The compiler does not check the
 * format, because callers pass texts that are made at run time.
 */
void trace_begin(const char* name, ...);

/* Closes the innermost open span of the calling thread. Without an open span, does nothing. */
void trace_end(void);

#ifdef __cplusplus
}
#endif

#endif
