/* The platform's system log. Only what the plug-in and its tools call is declared. */
#ifndef ORVEL_DLOG_H_
#define ORVEL_DLOG_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Priorities of a log message. */
enum { DLOG_DEBUG = 3, DLOG_INFO = 4, DLOG_ERROR = 6 };

/* The main log buffer. */
enum { DLOG_MAIN = 0 };

/*
 * Writes one message to buffer `log_id` under `tag`, formatted like printf. The strings are only read. Returns the
 * number of bytes logged, or a negative value when the message could not be written.
 */
int __dlog_print(int log_id, int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

#ifdef __cplusplus
}
#endif

#endif
