// Texts of the plug-in's log from which orvelbox draws conclusions. All others stand where they are logged. Macros,
// because a log line's format must be one literal.
#ifndef BASE_LOG_TEXTS_H_
#define BASE_LOG_TEXTS_H_

// The three lines about a duplicate, which come one after the other; a path follows the second and the third.
#define LOG_TEXT_DUPLICATE_FOUND "### Duplicated DLL found ###"
#define LOG_TEXT_ORIGIN "Origin : "
#define LOG_TEXT_DUPLICATED "Duplicated : "
// Of a duplicate that stays.
#define LOG_TEXT_READ_WRITE "Origin file is in RW area. so doesn't remove duplicate file"
// Of an install that fails for its duplicates; the address of the guide follows.
#define LOG_TEXT_GUIDE "Duplicated DLL found. Please refer guide : "
#define LOG_TEXT_NOT_INHOUSE "### App type is not dotnet-inhouse ###"
#define LOG_TEXT_RESTART_FAILED "Can't restart dotnet-loader-inhouse"

#endif
