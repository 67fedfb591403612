// Preloaded into linux.uml only: lets it restore the registers of processes on a processor with large ones (AMX).
// SPDX-License-Identifier: MIT
//
// The buffer of linux.uml has a fixed size, too small for these registers. The kernel sets NT_X86_XSTATE only as a
// whole and refuses a part with EFAULT.
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

// Looked up before linux.uml runs: it calls ptrace on small stacks, which have no room for dlsym. For the same reason
// the register set is static; linux.uml has one thread.
const tPtrace systemPtrace = reinterpret_cast<tPtrace>(dlsym(RTLD_NEXT, "ptrace"));
alignas(64) std::uint8_t wholeSet[65536];

// Sets the whole register set: the caller's data, then the registers that the process has now.
long setWhole(pid_t process, void* type, const iovec& part)
{
    iovec whole = { wholeSet, sizeof wholeSet };
    if (systemPtrace(PTRACE_GETREGSET, process, type, &whole) < 0)
        return -1;
    std::memcpy(wholeSet, part.iov_base, std::min(part.iov_len, whole.iov_len));
    return systemPtrace(PTRACE_SETREGSET, process, type, &whole);
}

} // namespace

/// As ptrace(2), except that a part of NT_X86_XSTATE can be set too.
extern "C" long ptraceWithParts(__ptrace_request request, pid_t process, void* address, void* data) __asm__("ptrace");

long ptraceWithParts(__ptrace_request request, pid_t process, void* address, void* data)
{
    const long result = systemPtrace(request, process, address, data);
    if (result >= 0 || errno != EFAULT || request != PTRACE_SETREGSET ||
        reinterpret_cast<std::uintptr_t>(address) != NT_X86_XSTATE)
        return result;
    return setWhole(process, address, *static_cast<const iovec*>(data));
}
