// Loaded into a program before its libraries: every call that makes, writes or closes a file below the folder
// SLOW_STORAGE_FOLDER takes SLOW_STORAGE_MILLISECONDS, and is noted in SLOW_STORAGE_REPORT as a line with its
// name and that of the thread.

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <time.h>
#include <unistd.h>

namespace {

template <class Function> Function* next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

bool isBelowFolder(const char* path) {
    const char* folder = std::getenv("SLOW_STORAGE_FOLDER");
    return folder != nullptr && std::strncmp(path, folder, std::strlen(folder)) == 0;
}

bool isBelowFolder(int file) {
    char link[64];
    char path[4096];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t length = ::readlink(link, path, sizeof path - 1);
    path[length > 0 ? length : 0] = '\0';
    return isBelowFolder(path);
}

void note(const char* call) {
    char thread[16] = {};
    char line[64];
    ::pthread_getname_np(::pthread_self(), thread, sizeof thread);
    const int length = std::snprintf(line, sizeof line, "%s %s\n", call, thread);
    const int report = next<int(const char*, int, ...)>("open")(
        std::getenv("SLOW_STORAGE_REPORT"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    static_cast<void>(
        next<ssize_t(int, const void*, size_t)>("write")(report, line, static_cast<size_t>(length)));
    next<int(int)>("close")(report);
}

void takeLong(const char* call) {
    const int before = errno;
    note(call);
    const long milliseconds = std::atol(std::getenv("SLOW_STORAGE_MILLISECONDS"));
    timespec rest{milliseconds / 1000, milliseconds % 1000 * 1'000'000};
    while (::nanosleep(&rest, &rest) != 0) {
    }
    errno = before;
}

int slowOpen(const char* name, const char* path, int flags, mode_t mode) {
    if ((flags & O_ACCMODE) != O_RDONLY && isBelowFolder(path)) {
        takeLong("open");
    }
    return next<int(const char*, int, ...)>(name)(path, flags, mode);
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = static_cast<mode_t>((flags & O_CREAT) != 0 ? va_arg(rest, int) : 0);
    va_end(rest);
    return slowOpen("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = static_cast<mode_t>((flags & O_CREAT) != 0 ? va_arg(rest, int) : 0);
    va_end(rest);
    return slowOpen("open64", path, flags, mode);
}

ssize_t write(int file, const void* bytes, size_t count) {
    if (isBelowFolder(file)) {
        takeLong("write");
    }
    return next<ssize_t(int, const void*, size_t)>("write")(file, bytes, count);
}

int close(int file) {
    if (isBelowFolder(file)) {
        takeLong("close");
    }
    return next<int(int)>("close")(file);
}
}
