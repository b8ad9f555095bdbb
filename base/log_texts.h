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
// The entry and the exit of a function; its label follows.
#define LOG_TEXT_ENTRY " +DotNETLog:"
#define LOG_TEXT_EXIT "-DotNETLog:"
// Two copies are compared; between their paths stands the second text.
#define LOG_TEXT_COMPARED "### Duplicated Checker ### Origin : "
#define LOG_TEXT_COMPARED_WITH ", Duplicated : "
// Of a DLL that is none of the duplicates, because of the path that follows.
#define LOG_TEXT_DPC "Is DPC DLL "
#define LOG_TEXT_SAMPLE "### Is sample app ###"
#define LOG_TEXT_NO_MANIFEST "xml provided is null"
// The package id follows, in brackets.
#define LOG_TEXT_RUN_ALREADY "GAC already run for same pkgId "
// A path follows, then the second text and the reason.
#define LOG_TEXT_REMOVE_FAILED "Failed to remove "
#define LOG_TEXT_REASON " : "
// What goes out of a cache file, and between it and the file the second text.
#define LOG_TEXT_ERASED "erase: "
#define LOG_TEXT_ERASED_FROM " from cache file: "
// A file was written beside the one that follows; then that it took its place.
#define LOG_TEXT_SAVE_FILE "Save File : "
#define LOG_TEXT_SAVED "Saved"
// Errors about cache files.
#define LOG_TEXT_NO_CACHE_FILE "error access cache path: "
#define LOG_TEXT_NOT_WRITTEN "Fail to write string to file - open error("
#define LOG_TEXT_LINK "Symbolic link is detected : "
// The package id stands between the two texts.
#define LOG_TEXT_REMOVE_CALLED "remove from cache called for "
#define LOG_TEXT_ADD_CALLED "add to cache called for "
#define LOG_TEXT_WITHOUT_ROOT ", but pkgroot is empty!"
// The package database does not answer, or does not know the package.
#define LOG_TEXT_NO_SEARCH "Error: Failed pkgmgrinfo_appinfo_metadata_filter_"
#define LOG_TEXT_NO_PACKAGE "package_info_create return error code : "

#endif
