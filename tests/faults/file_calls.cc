// The C library's file functions as this program defines them: each asks what must happen to the call, then does the
// same as the real one, except that nothing is forced to disk. They are exported, so that shared libraries call them
// too.
// The checked variants of these functions in the C library must not be used.
#undef _FORTIFY_SOURCE

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "tests/faults/call_paths.h"
#include "tests/faults/fault_points.h"

namespace {

using faults::Fails;
using faults::FailsOn;
using faults::kChanges;
using faults::kReads;
using faults::Next;
using faults::Opened;
using faults::Path;
using faults::PathAt;
using faults::PathOf;
using faults::Verdict;

unsigned KindOfOpening(int flags) {
  const bool changes = (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
  return changes ? kChanges : kReads;
}

unsigned KindOfOpening(const char* mode) { return std::strpbrk(mode, "wa+") != nullptr ? kChanges : kReads; }

bool NeedsMode(int flags) { return (flags & (O_CREAT | O_TMPFILE)) != 0; }

using Write = ssize_t(int, const void*, size_t);

// Decides about a write of `size` bytes.
Verdict MeetWrite(const char* call, int file, const void* data, size_t size) {
  const Path path = PathOf(file);
  const Verdict verdict = faults::Meet(kChanges, call, path.text, true);
  if (verdict == Verdict::kFail) errno = EIO;
  if (verdict != Verdict::kWriteHalf) return verdict;
  static auto* const next = Next<Write>("write");
  next(file, data, size / 2);
  faults::End();
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

// Begins the definition of the C library's function `symbol`. The headers' declaration is not used, because it names
// different functions for different widths.
#define DEFINE(result, symbol, ...)              \
  result Own_##symbol(__VA_ARGS__) asm(#symbol); \
  result Own_##symbol(__VA_ARGS__)

// --- Opening ---

#define DEFINE_OPEN(symbol)                                               \
  DEFINE(int, symbol, const char* path, int flags, ...) {                 \
    static auto* const next = Next<int(const char*, int, ...)>(#symbol);  \
    va_list arguments;                                                    \
    va_start(arguments, flags);                                           \
    const mode_t mode = NeedsMode(flags) ? va_arg(arguments, mode_t) : 0; \
    va_end(arguments);                                                    \
    if (Fails(KindOfOpening(flags), "open", path)) return -1;             \
    return Opened(next(path, flags, mode));                               \
  }
DEFINE_OPEN(open)
DEFINE_OPEN(open64)

#define DEFINE_OPENAT(symbol)                                                         \
  DEFINE(int, symbol, int directory, const char* path, int flags, ...) {              \
    static auto* const next = Next<int(int, const char*, int, ...)>(#symbol);         \
    va_list arguments;                                                                \
    va_start(arguments, flags);                                                       \
    const mode_t mode = NeedsMode(flags) ? va_arg(arguments, mode_t) : 0;             \
    va_end(arguments);                                                                \
    if (Fails(KindOfOpening(flags), "open", PathAt(directory, path).text)) return -1; \
    return Opened(next(directory, path, flags, mode));                                \
  }
DEFINE_OPENAT(openat)
DEFINE_OPENAT(openat64)

#define DEFINE_FOPEN(symbol)                                                  \
  DEFINE(FILE*, symbol, const char* path, const char* mode) {                 \
    static auto* const next = Next<FILE*(const char*, const char*)>(#symbol); \
    if (Fails(KindOfOpening(mode), "fopen", path)) return nullptr;            \
    return Opened(next(path, mode));                                          \
  }
DEFINE_FOPEN(fopen)
DEFINE_FOPEN(fopen64)

DIR* opendir(const char* path) {
  static auto* const next = Next<DIR*(const char*)>("opendir");
  return Fails(kReads, "opendir", path) ? nullptr : Opened(next(path));
}

DIR* fdopendir(int file) {
  static auto* const next = Next<DIR*(int)>("fdopendir");
  return FailsOn(kReads, "opendir", file) ? nullptr : Opened(next(file));
}

// --- Reading ---

#define DEFINE_READDIR(symbol)                                        \
  DEFINE(void*, symbol, DIR* directory) {                             \
    static auto* const next = Next<void*(DIR*)>(#symbol);             \
    if (FailsOn(kReads, "readdir", dirfd(directory))) return nullptr; \
    return next(directory);                                           \
  }
DEFINE_READDIR(readdir)
DEFINE_READDIR(readdir64)

ssize_t read(int file, void* buffer, size_t size) {
  static auto* const next = Next<ssize_t(int, void*, size_t)>("read");
  return FailsOn(kReads, "read", file) ? -1 : next(file, buffer, size);
}

#define DEFINE_STAT(symbol, call)                                     \
  DEFINE(int, symbol, const char* path, void* status) {               \
    static auto* const next = Next<int(const char*, void*)>(#symbol); \
    return Fails(kReads, call, path) ? -1 : next(path, status);       \
  }
DEFINE_STAT(stat, "stat")
DEFINE_STAT(stat64, "stat")
DEFINE_STAT(__stat64_time64, "stat")
DEFINE_STAT(lstat, "lstat")
DEFINE_STAT(lstat64, "lstat")
DEFINE_STAT(__lstat64_time64, "lstat")

#define DEFINE_FSTATAT(symbol)                                                                            \
  DEFINE(int, symbol, int directory, const char* path, void* status, int flags) {                         \
    static auto* const next = Next<int(int, const char*, void*, int)>(#symbol);                           \
    const char* call = (flags & AT_SYMLINK_NOFOLLOW) != 0 ? "lstat" : "stat";                             \
    return Fails(kReads, call, PathAt(directory, path).text) ? -1 : next(directory, path, status, flags); \
  }
DEFINE_FSTATAT(fstatat)
DEFINE_FSTATAT(fstatat64)
DEFINE_FSTATAT(__fstatat64_time64)

int access(const char* path, int mode) noexcept {
  static auto* const next = Next<int(const char*, int)>("access");
  return Fails(kReads, "access", path) ? -1 : next(path, mode);
}

// --- Writing ---

ssize_t write(int file, const void* data, size_t size) {
  static auto* const next = Next<Write>("write");
  return MeetWrite("write", file, data, size) == Verdict::kFail ? -1 : next(file, data, size);
}

// SQLite writes pages; half a page is written at its own offset.
ssize_t pwrite64(int file, const void* data, size_t size, off64_t offset) {
  static auto* const next = Next<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
  const Verdict verdict = faults::Meet(kChanges, "pwrite", PathOf(file).text, true);
  if (verdict == Verdict::kGoOn) return next(file, data, size, offset);
  if (verdict == Verdict::kWriteHalf) {
    next(file, data, size / 2, offset);
    faults::End();
  }
  errno = EIO;
  return -1;
}

// The stream's own buffer is lost with the process, so half of the text is written to the file directly.
int fputs(const char* text, FILE* file) {
  static auto* const next = Next<int(const char*, FILE*)>("fputs");
  return MeetWrite("fputs", fileno(file), text, std::strlen(text)) == Verdict::kFail ? EOF : next(text, file);
}

int fflush(FILE* file) {
  static auto* const next = Next<int(FILE*)>("fflush");
  if (file != nullptr && FailsOn(kChanges, "fflush", fileno(file))) return EOF;
  return next(file);
}

// A failing fclose still closes the stream.
int fclose(FILE* file) {
  static auto* const next = Next<int(FILE*)>("fclose");
  const bool fails = FailsOn(kChanges, "fclose", fileno(file));
  const int result = next(file);
  if (fails) errno = EIO;
  return fails ? EOF : result;
}

int fsync(int file) { return FailsOn(kChanges, "fsync", file) ? -1 : 0; }

int fdatasync(int file) { return FailsOn(kChanges, "fdatasync", file) ? -1 : 0; }

void sync() noexcept { faults::Meet(kChanges, "sync", nullptr); }

#define DEFINE_FTRUNCATE(symbol, offset)                                   \
  DEFINE(int, symbol, int file, offset length) {                           \
    static auto* const next = Next<int(int, offset)>(#symbol);             \
    return FailsOn(kChanges, "ftruncate", file) ? -1 : next(file, length); \
  }
DEFINE_FTRUNCATE(ftruncate, long)
DEFINE_FTRUNCATE(ftruncate64, off64_t)

// --- Names ---

#define DEFINE_ON_PATH(name)                                 \
  int name(const char* path) noexcept {                      \
    static auto* const next = Next<int(const char*)>(#name); \
    return Fails(kChanges, #name, path) ? -1 : next(path);   \
  }
DEFINE_ON_PATH(unlink)
DEFINE_ON_PATH(rmdir)
DEFINE_ON_PATH(remove)

int unlinkat(int directory, const char* path, int flags) noexcept {
  static auto* const next = Next<int(int, const char*, int)>("unlinkat");
  return Fails(kChanges, "unlink", PathAt(directory, path).text) ? -1 : next(directory, path, flags);
}

int rename(const char* from, const char* to) noexcept {
  static auto* const next = Next<int(const char*, const char*)>("rename");
  return Fails(kChanges, "rename", from) ? -1 : next(from, to);
}

int symlink(const char* target, const char* path) noexcept {
  static auto* const next = Next<int(const char*, const char*)>("symlink");
  return Fails(kChanges, "symlink", path) ? -1 : next(target, path);
}

int mkdir(const char* path, mode_t mode) noexcept {
  static auto* const next = Next<int(const char*, mode_t)>("mkdir");
  return Fails(kChanges, "mkdir", path) ? -1 : next(path, mode);
}

int fchmodat(int directory, const char* path, mode_t mode, int flags) noexcept {
  static auto* const next = Next<int(int, const char*, mode_t, int)>("fchmodat");
  return Fails(kChanges, "chmod", PathAt(directory, path).text) ? -1 : next(directory, path, mode, flags);
}

}  // extern "C"
#pragma GCC visibility pop
