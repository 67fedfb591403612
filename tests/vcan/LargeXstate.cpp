// Preloaded after xstate_preload: lets ptrace behave as on a processor with large extended registers.
// SPDX-License-Identifier: MIT
//
// The register set is 8 KiB larger than that of this machine, and can only be set as a whole.
#include <dlfcn.h>
#include <elf.h>
#include <sys/ptrace.h>
#include <sys/types.h>
#include <sys/uio.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

namespace
{

using tPtrace = long (*)(__ptrace_request, pid_t, void*, void*);

constexpr std::size_t moreBytes = 8192;
const tPtrace systemPtrace = reinterpret_cast<tPtrace>(dlsym(RTLD_NEXT, "ptrace"));
alignas(64) std::uint8_t wholeSet[65536];

// Reads the register set of this machine into wholeSet. @return its size, 0 if that fails
std::size_t fetch(pid_t process, void* type)
{
    iovec set = { wholeSet, sizeof wholeSet - moreBytes };
    return systemPtrace(PTRACE_GETREGSET, process, type, &set) < 0 ? 0 : set.iov_len;
}

// As the kernel does, fills as much as the caller has room for.
long get(std::size_t size, iovec& wanted)
{
    std::memset(wholeSet + size, 0, moreBytes);
    wanted.iov_len = std::min(wanted.iov_len, size + moreBytes);
    std::memcpy(wanted.iov_base, wholeSet, wanted.iov_len);
    return 0;
}

long set(pid_t process, void* type, std::size_t size, const iovec& given)
{
    if (given.iov_len != size + moreBytes) {
        errno = EFAULT;
        return -1;
    }
    iovec part = { given.iov_base, size };
    return systemPtrace(PTRACE_SETREGSET, process, type, &part);
}

} // namespace

extern "C" long ptraceOfLargeSet(__ptrace_request request, pid_t process, void* address, void* data) __asm__("ptrace");

long ptraceOfLargeSet(__ptrace_request request, pid_t process, void* address, void* data)
{
    if ((request != PTRACE_GETREGSET && request != PTRACE_SETREGSET) ||
        reinterpret_cast<std::uintptr_t>(address) != NT_X86_XSTATE)
        return systemPtrace(request, process, address, data);
    const std::size_t size = fetch(process, address);
    if (size == 0)
        return -1;
    iovec& regs = *static_cast<iovec*>(data);
    return request == PTRACE_GETREGSET ? get(size, regs) : set(process, address, size, regs);
}
