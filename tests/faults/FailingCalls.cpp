// System calls that fail, between Qt and the C library.
// SPDX-License-Identifier: MIT
#include "FailingCalls.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr int mostCalls = 100'000;
constexpr int mostDescriptors = 1024;

char watchedFolder[PATH_MAX];
bool watched[mostDescriptors];
const char* names[mostCalls];
int calls = 0;
int failed = 0;
int faultNth = 0;
int faultError = 0;
int faultHow = failOnce;

bool isBelow(const char* path)
{
    const std::size_t length = std::strlen(watchedFolder);
    return length > 0 && path != nullptr && std::strncmp(path, watchedFolder, length) == 0;
}

bool isWatched(int descriptor)
{
    return descriptor >= 0 && descriptor < mostDescriptors && watched[descriptor];
}

// Counts the call. True when it is the one that fails, or a later one like it.
bool isDue(const char* name)
{
    if (calls < mostCalls)
        names[calls] = name;
    ++calls;
    if (faultNth == 0 || calls < faultNth || faultNth > mostCalls)
        return false;
    const bool later = calls > faultNth && faultHow == failForEver && std::strcmp(name, names[faultNth - 1]) == 0;
    const bool due = calls == faultNth || later;
    failed += due ? 1 : 0;
    return due;
}

// The function of the C library that has the name.
template <typename Function>
Function* real(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Makes the call, or fails in its place.
template <typename Function, typename... Given>
auto pass(bool isOurs, Function* function, const char* name, Given... given)
{
    Function* const next = real(function, name);
    using tResult = decltype(next(given...));
    if (!isOurs || !isDue(name) || faultHow == failShort)
        return next(given...);
    errno = faultError;
    return static_cast<tResult>(-1);
}

// A transfer of `size` bytes, or of one.
template <typename Function, typename Buffer>
ssize_t transfer(Function* function, const char* name, int descriptor, Buffer* buffer, std::size_t size)
{
    Function* const next = real(function, name);
    if (!isWatched(descriptor) || !isDue(name))
        return next(descriptor, buffer, size);
    if (faultHow == failShort)
        return next(descriptor, buffer, std::min<std::size_t>(size, 1));
    errno = faultError;
    return -1;
}

// No test waits for the disk.
int sync(int (*function)(int), const char* name, int descriptor)
{
    if (!isWatched(descriptor))
        return real(function, name)(descriptor);
    if (!isDue(name) || faultHow == failShort)
        return 0;
    errno = faultError;
    return -1;
}

int opened(const char* path, int descriptor)
{
    if (isBelow(path) && descriptor >= 0 && descriptor < mostDescriptors)
        watched[descriptor] = true;
    return descriptor;
}

int numberIn(const char* variable)
{
    const char* text = std::getenv(variable);
    return text != nullptr ? std::atoi(text) : 0;
}

[[gnu::constructor]] void takeEnvironment()
{
    if (const char* folder = std::getenv("VELMORA_FAIL_BELOW"))
        failing_calls_watch(folder);
    failing_calls_arm(numberIn("VELMORA_FAIL_NTH"), numberIn("VELMORA_FAIL_ERROR"), numberIn("VELMORA_FAIL_HOW"));
}

[[gnu::destructor]] void report()
{
    const char* fileName = std::getenv("VELMORA_FAIL_REPORT");
    FILE* file = fileName != nullptr ? std::fopen(fileName, "w") : nullptr;
    if (file == nullptr)
        return;
    std::fprintf(file, "%d\n%d\n", failing_calls_open(), failed);
    for (int call = 1; call <= calls; ++call)
        std::fprintf(file, "%s\n", failing_calls_name(call));
    std::fclose(file);
}

} // namespace

extern "C" {

void failing_calls_watch(const char* folder)
{
    std::snprintf(watchedFolder, sizeof watchedFolder, "%s", folder);
    std::fill(std::begin(watched), std::end(watched), false);
    failing_calls_arm(0, 0, failOnce);
}

void failing_calls_arm(int nth, int error, int how)
{
    calls = failed = 0;
    faultNth = nth;
    faultError = error;
    faultHow = how;
}

int failing_calls_count()
{
    return calls;
}

int failing_calls_failed()
{
    return failed;
}

int failing_calls_open()
{
    return static_cast<int>(std::count(std::begin(watched), std::end(watched), true));
}

const char* failing_calls_name(int n)
{
    return n >= 1 && n <= calls && n <= mostCalls ? names[n - 1] : "";
}

// The calls, as the C library declares them.

int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return opened(path, pass(isBelow(path), &open64, "open64", path, flags, mode));
}

int close(int descriptor)
{
    const bool isOurs = isWatched(descriptor);
    const int result = real(&close, "close")(descriptor); // released also when it fails
    if (!isOurs)
        return result;
    watched[descriptor] = false;
    if (!isDue("close") || faultHow == failShort)
        return result;
    errno = faultError;
    return -1;
}

ssize_t read(int descriptor, void* data, std::size_t size)
{
    return transfer(&read, "read", descriptor, data, size);
}
ssize_t write(int descriptor, const void* data, std::size_t size)
{
    return transfer(&write, "write", descriptor, data, size);
}

int fsync(int descriptor)
{
    return sync(&fsync, "fsync", descriptor);
}
int fdatasync(int descriptor)
{
    return sync(&fdatasync, "fdatasync", descriptor);
}
int ftruncate64(int descriptor, off64_t length) noexcept
{
    return pass(isWatched(descriptor), &ftruncate64, "ftruncate64", descriptor, length);
}
off64_t lseek64(int descriptor, off64_t offset, int whence) noexcept
{
    return pass(isWatched(descriptor), &lseek64, "lseek64", descriptor, offset, whence);
}
int flock(int descriptor, int operation) noexcept
{
    return pass(isWatched(descriptor), &flock, "flock", descriptor, operation);
}
int fcntl(int descriptor, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return pass(isWatched(descriptor), &fcntl, "fcntl", descriptor, command, argument);
}
int fchmod(int descriptor, mode_t mode) noexcept
{
    return pass(isWatched(descriptor), &fchmod, "fchmod", descriptor, mode);
}
void* mmap64(void* address, std::size_t length, int protection, int flags, int descriptor, off64_t offset) noexcept
{
    const auto next = real(&mmap64, "mmap64");
    if (!isWatched(descriptor) || !isDue("mmap64") || faultHow == failShort)
        return next(address, length, protection, flags, descriptor, offset);
    errno = faultError;
    return MAP_FAILED;
}
int fstat64(int descriptor, struct stat64* status) noexcept
{
    return pass(isWatched(descriptor), static_cast<int (*)(int, struct stat64*) noexcept>(&fstat64), "fstat64",
                descriptor, status);
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) noexcept
{
    const bool isOurs = isBelow(path) || (*path == '\0' && isWatched(folder));
    return pass(isOurs, static_cast<int (*)(int, const char*, int, unsigned, struct statx*) noexcept>(&statx), "statx",
                folder, path, flags, mask, status);
}
int stat64(const char* path, struct stat64* status) noexcept
{
    return pass(isBelow(path), static_cast<int (*)(const char*, struct stat64*) noexcept>(&stat64), "stat64", path,
                status);
}
int stat(const char* path, struct stat* status) noexcept
{
    return pass(isBelow(path), static_cast<int (*)(const char*, struct stat*) noexcept>(&stat), "stat", path, status);
}
int lstat64(const char* path, struct stat64* status) noexcept
{
    return pass(isBelow(path), &lstat64, "lstat64", path, status);
}
int access(const char* path, int mode) noexcept
{
    return pass(isBelow(path), &access, "access", path, mode);
}
ssize_t readlink(const char* path, char* buffer, std::size_t size) noexcept
{
    return pass(isBelow(path), &readlink, "readlink", path, buffer, size);
}
char* realpath(const char* path, char* resolved) noexcept
{
    const auto next = real(&realpath, "realpath");
    if (!isBelow(path) || !isDue("realpath") || faultHow == failShort)
        return next(path, resolved);
    errno = faultError;
    return nullptr;
}

int rename(const char* from, const char* to) noexcept
{
    return pass(isBelow(from) || isBelow(to), &rename, "rename", from, to);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    return pass(isBelow(from) || isBelow(to), &renameat2, "renameat2", fromFolder, from, toFolder, to, flags);
}
int link(const char* from, const char* to) noexcept
{
    return pass(isBelow(from) || isBelow(to), &link, "link", from, to);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept
{
    return pass(isBelow(from) || isBelow(to), &linkat, "linkat", fromFolder, from, toFolder, to, flags);
}
int unlink(const char* path) noexcept
{
    return pass(isBelow(path), &unlink, "unlink", path);
}
int mkdir(const char* path, mode_t mode) noexcept
{
    return pass(isBelow(path), &mkdir, "mkdir", path, mode);
}
int chmod(const char* path, mode_t mode) noexcept
{
    return pass(isBelow(path), &chmod, "chmod", path, mode);
}
}
