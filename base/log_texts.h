// Log texts of the plug-in that orvelbox interprets. All other texts are at the place that logs them. These are macros
// because a log line's format must be one literal.
#ifndef BASE_LOG_TEXTS_H_
#define BASE_LOG_TEXTS_H_

// The three consecutive lines about a duplicate. A path follows the second and the third.
#define LOG_TEXT_DUPLICATE_FOUND "### Duplicated DLL found ###"
#define LOG_TEXT_ORIGIN "Origin : "
#define LOG_TEXT_DUPLICATED "Duplicated : "
// For a duplicate that is kept.
#define LOG_TEXT_READ_WRITE "Origin file is in RW area. so doesn't remove duplicate file"
// For an install that fails because of duplicates. The address of the guide follows.
#define LOG_TEXT_GUIDE "Duplicated DLL found. Please refer guide : "
#define LOG_TEXT_NOT_INHOUSE "### App type is not dotnet-inhouse ###"
#define LOG_TEXT_RESTART_FAILED "Can't restart dotnet-loader-inhouse"

#endif
