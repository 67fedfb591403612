// Memory that runs out: allocations that fail.
// SPDX-License-Identifier: MIT
#include "FailingMemory.h"

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace
{

const char* watchedFile = nullptr;
int watchedDescriptor = -1;
bool isCounting = false;
bool isOver = false; // nothing is left
long count = 0;
long faultNth = 0;
bool faultAll = false;

bool isDue()
{
    if (isOver || !isCounting)
        return isOver;
    const bool due = ++count == faultNth;
    isOver = due && faultAll;
    return due;
}

void* none()
{
    errno = ENOMEM;
    return nullptr;
}

long numberIn(const char* variable)
{
    const char* text = std::getenv(variable);
    return text != nullptr ? std::atol(text) : 0;
}

[[gnu::constructor]] void takeEnvironment()
{
    watchedFile = std::getenv("VELMORA_MEMORY_WHILE");
    faultNth = numberIn("VELMORA_MEMORY_NTH");
    faultAll = numberIn("VELMORA_MEMORY_ALL") != 0;
}

[[gnu::destructor]] void report()
{
    isCounting = isOver = false;
    const char* fileName = std::getenv("VELMORA_MEMORY_REPORT");
    FILE* file = fileName != nullptr ? std::fopen(fileName, "w") : nullptr;
    if (file == nullptr)
        return;
    std::fprintf(file, "%ld\n", count);
    std::fclose(file);
}

} // namespace

extern "C" {

void failing_memory_arm(long nth, int all)
{
    count = 0;
    faultNth = nth;
    faultAll = all != 0;
    isOver = false;
    isCounting = nth > 0;
}

long failing_memory_count()
{
    return count;
}

void* malloc(std::size_t size)
{
    return isDue() ? none() : __libc_malloc(size);
}
void* calloc(std::size_t number, std::size_t size)
{
    return isDue() ? none() : __libc_calloc(number, size);
}
void* realloc(void* memory, std::size_t size)
{
    return isDue() ? none() : __libc_realloc(memory, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return isDue() ? none() : __libc_memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept
{
    *memory = isDue() ? nullptr : __libc_memalign(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}

// Where the program begins to read the sheet, and where it ends.
int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    static const auto next = reinterpret_cast<decltype(&open64)>(dlsym(RTLD_NEXT, "open64"));
    const int descriptor = next(path, flags, mode);
    if (descriptor >= 0 && watchedFile != nullptr && std::strcmp(path, watchedFile) == 0) {
        watchedDescriptor = descriptor;
        isCounting = true;
    }
    return descriptor;
}
int close(int descriptor)
{
    static const auto next = reinterpret_cast<decltype(&close)>(dlsym(RTLD_NEXT, "close"));
    if (descriptor >= 0 && descriptor == watchedDescriptor) {
        watchedDescriptor = -1;
        isCounting = false;
    }
    return next(descriptor);
}
}
