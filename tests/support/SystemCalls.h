// Replaces system calls of the gateway client: the linker's --wrap leads them here, where a test can answer them.
// The program that includes this is linked with --wrap for each of the calls, and includes it in one source only.
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

extern "C" {
int __real_socket(int family, int type, int protocol);
int __real_connect(int socket, const sockaddr* address, socklen_t size);
int __real_setsockopt(int socket, int level, int name, const void* value, socklen_t size);
int __real_select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout);
ssize_t __real_send(int socket, const void* data, size_t length, int flags);
ssize_t __real_recv(int socket, void* data, size_t length, int flags);
int __real_close(int descriptor);
}

/// While an object lives, the calls of the thread that made it go to the functions set here; other threads, and calls
/// without a function, reach the system. One object at a time. Time-outs cost nothing:
///
///     CSystemCalls calls;
///     calls.select = [](auto...) { return 0; };
struct CSystemCalls {
    std::function<decltype(__real_socket)> socket;
    std::function<decltype(__real_connect)> connect;
    std::function<decltype(__real_setsockopt)> setsockopt;
    std::function<decltype(__real_select)> select;
    std::function<decltype(__real_send)> send;
    std::function<decltype(__real_recv)> recv;
    std::function<decltype(__real_close)> close;

    CSystemCalls() { current = this; }
    ~CSystemCalls() { current = nullptr; }
    CSystemCalls(const CSystemCalls&) = delete;
    CSystemCalls& operator=(const CSystemCalls&) = delete;

    static inline thread_local CSystemCalls* current = nullptr;

    template <typename Function, typename... Arguments>
    static auto call(std::function<Function> CSystemCalls::*replacement, Function* real, Arguments... arguments)
    {
        const bool replaced = current != nullptr && current->*replacement;
        return replaced ? (current->*replacement)(arguments...) : real(arguments...);
    }
};

extern "C" {
int __wrap_socket(int family, int type, int protocol);
int __wrap_connect(int socket, const sockaddr* address, socklen_t size);
int __wrap_setsockopt(int socket, int level, int name, const void* value, socklen_t size);
int __wrap_select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout);
ssize_t __wrap_send(int socket, const void* data, size_t length, int flags);
ssize_t __wrap_recv(int socket, void* data, size_t length, int flags);
int __wrap_close(int descriptor);

int __wrap_socket(int family, int type, int protocol)
{
    return CSystemCalls::call(&CSystemCalls::socket, &__real_socket, family, type, protocol);
}
int __wrap_connect(int socket, const sockaddr* address, socklen_t size)
{
    return CSystemCalls::call(&CSystemCalls::connect, &__real_connect, socket, address, size);
}
int __wrap_setsockopt(int socket, int level, int name, const void* value, socklen_t size)
{
    return CSystemCalls::call(&CSystemCalls::setsockopt, &__real_setsockopt, socket, level, name, value, size);
}
int __wrap_select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout)
{
    return CSystemCalls::call(&CSystemCalls::select, &__real_select, count, read, write, except, timeout);
}
ssize_t __wrap_send(int socket, const void* data, size_t length, int flags)
{
    return CSystemCalls::call(&CSystemCalls::send, &__real_send, socket, data, length, flags);
}
ssize_t __wrap_recv(int socket, void* data, size_t length, int flags)
{
    return CSystemCalls::call(&CSystemCalls::recv, &__real_recv, socket, data, length, flags);
}
int __wrap_close(int descriptor)
{
    return CSystemCalls::call(&CSystemCalls::close, &__real_close, descriptor);
}
}
