// The calls that the linker leads to the fake CAN bus.
// SPDX-License-Identifier: MIT
#include "FakeBus.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <fcntl.h>
#include <linux/can.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

extern "C" {
int __real_socket(int family, int type, int protocol);
int __real_fcntl(int descriptor, int command, ...);
int __real_bind(int socket, const sockaddr* address, socklen_t size);
int __real_ioctl(int descriptor, unsigned long request, ...);
ssize_t __real_write(int descriptor, const void* data, size_t size);
ssize_t __real_read(int descriptor, void* data, size_t size);
int __real_select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout);
int __real_close(int descriptor);
int __real_gettimeofday(timeval* now, void* zone);
int __real_usleep(useconds_t microseconds);

int __wrap_socket(int family, int type, int protocol);
int __wrap_fcntl(int descriptor, int command, ...);
int __wrap_bind(int socket, const sockaddr* address, socklen_t size);
int __wrap_ioctl(int descriptor, unsigned long request, ...);
ssize_t __wrap_write(int descriptor, const void* data, size_t size);
ssize_t __wrap_read(int descriptor, void* data, size_t size);
int __wrap_select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout);
int __wrap_close(int descriptor);
int __wrap_gettimeofday(timeval* now, void* zone);
int __wrap_usleep(useconds_t microseconds);
}

// The calls, for a descriptor of the bus.
struct CFakeBusCalls {
    static CFakeBus* bus() { return CFakeBus::current; }
    static CFakeBus* busOf(int descriptor)
    {
        return bus() != nullptr && bus()->m_sockets.count(descriptor) != 0 ? bus() : nullptr;
    }

    static int socket(CFakeBus& bus, int family, int type, int protocol)
    {
        bus.m_calls += QString("socket(%1, %2, %3)").arg(family).arg(type).arg(protocol);
        if (const auto* failure = bus.failure(CFakeBus::Socket))
            return failure->result;
        int descriptor = __real_socket(AF_UNIX, SOCK_DGRAM, 0); // stands for one of the bus; carries nothing
        if (descriptor < bus.lowestDescriptor) {
            const int opened = descriptor;
            descriptor = __real_fcntl(opened, F_DUPFD, bus.lowestDescriptor);
            __real_close(opened);
        }
        if (descriptor >= 0)
            bus.m_sockets[descriptor] = { family, false, true };
        return descriptor;
    }

    static int fcntl(CFakeBus& bus, int descriptor, int command, long argument)
    {
        if (const auto* failure = bus.failure(CFakeBus::Fcntl))
            return failure->result;
        return __real_fcntl(descriptor, command, argument);
    }

    static int ioctl(CFakeBus& bus, unsigned long request, void* argument)
    {
        if (request != SIOCGIFINDEX)
            bus.problem(QString("ioctl(0x%1)").arg(request, 0, 16));
        auto* interface = static_cast<ifreq*>(argument);
        const std::string name(interface->ifr_name, strnlen(interface->ifr_name, IFNAMSIZ));
        bus.m_calls += QString("ioctl(\"%1\", %2)").arg(QString::fromStdString(name)).arg(interface->ifr_ifindex);
        if (const auto* failure = bus.failure(CFakeBus::Ioctl))
            return failure->result;
        const auto found =
            bus.interfaces.find(name.substr(0, IFNAMSIZ - 1)); // the kernel, too, cuts the 16th character
        if (found == bus.interfaces.end()) {
            errno = ENODEV;
            return -1;
        }
        interface->ifr_ifindex = found->second;
        return 0;
    }

    // As in the kernel, index 0 stands for all interfaces.
    static int bind(CFakeBus& bus, int descriptor, const sockaddr* generic, socklen_t size)
    {
        sockaddr_can address = {};
        std::memcpy(&address, generic, qMin<size_t>(size, sizeof address));
        bus.m_calls += QString("bind(%1, %2, %3)").arg(address.can_family).arg(address.can_ifindex).arg(size);
        if (const auto* failure = bus.failure(CFakeBus::Bind))
            return failure->result;
        auto& socket = bus.m_sockets[descriptor];
        const auto named = [&](const auto& interface) { return interface.second == address.can_ifindex; };
        if (address.can_family != socket.family || size < 8) {
            errno = EINVAL;
            return -1;
        }
        if (address.can_ifindex != 0 && std::none_of(bus.interfaces.begin(), bus.interfaces.end(), named)) {
            errno = ENODEV;
            return -1;
        }
        bus.m_wire.erase(bus.m_wire.begin(), bus.m_wire.upper_bound(bus.m_now)); // no socket was bound
        socket.bound = true;
        return 0;
    }

    // The calls must not block: the bus may be busy, or another reader may have taken the message.
    static void checkNonBlocking(CFakeBus& bus, int descriptor, const char* call)
    {
        if ((__real_fcntl(descriptor, F_GETFL) & O_NONBLOCK) == 0)
            bus.problem(QString("%1 on a socket that blocks").arg(call));
    }

    static ssize_t write(CFakeBus& bus, int descriptor, const void* data, size_t size)
    {
        checkNonBlocking(bus, descriptor, "write()");
        const QString frame = bus.responder ? QString() : fakeBusText(data, size);
        if (!bus.responder)
            bus.m_calls += "write(" + frame + ")";
        if (const auto* failure = bus.failure(CFakeBus::Write))
            return failure->result;
        if (!bus.m_sockets[descriptor].bound) {
            errno = ENXIO;
            return -1;
        }
        if (bus.responder)
            bus.responder(*static_cast<const can_frame*>(data));
        else
            bus.play(frame);
        return ssize_t(size);
    }

    static ssize_t read(CFakeBus& bus, int descriptor, void* data, size_t size)
    {
        checkNonBlocking(bus, descriptor, "read()");
        if (!bus.responder)
            bus.m_calls += "read()";
        const auto* failure = bus.failure(CFakeBus::Read);
        if (failure != nullptr && failure->result < 0)
            return failure->result;
        if (!bus.readable() || !bus.m_sockets[descriptor].bound) {
            errno = EAGAIN;
            return -1;
        }
        const QByteArray bytes = bus.m_wire.begin()->second;
        bus.m_wire.erase(bus.m_wire.begin());
        const size_t count = qMin(failure != nullptr ? size_t(failure->result) : size, size_t(bytes.size()));
        std::memcpy(data, bytes.constData(), count);
        return ssize_t(count);
    }

    static int select(CFakeBus& bus, int descriptor, fd_set* read, fd_set* write, fd_set* except, timeval* timeout)
    {
        bus.m_now += bus.step;
        if (!bus.m_sockets[descriptor].open)
            bus.problem("select() on a closed socket");
        if (timeout == nullptr || timeout->tv_sec != 0 || timeout->tv_usec != 0)
            bus.problem("select() would block");
        if (write != nullptr || except != nullptr)
            bus.problem("select() for more than reading");
        if (const auto* failure = bus.failure(CFakeBus::Select))
            return failure->result; // leaves the sets unchanged
        FD_ZERO(read);
        if (!bus.m_sockets[descriptor].bound || !bus.readable())
            return 0;
        FD_SET(descriptor, read);
        return 1;
    }

    static int close(CFakeBus& bus, int descriptor)
    {
        bus.m_calls += "close()";
        auto& socket = bus.m_sockets[descriptor];
        if (socket.open)
            __real_close(descriptor);
        else
            bus.problem("closed twice");
        socket = {};
        const auto* failure = bus.failure(CFakeBus::Close);
        return failure != nullptr ? failure->result : 0;
    }

    static int gettimeofday(CFakeBus& bus, timeval* now)
    {
        bus.m_now += bus.step;
        if (const auto* failure = bus.failure(CFakeBus::Gettimeofday))
            return failure->result;
        now->tv_sec = bus.m_now / 1'000'000;
        now->tv_usec = bus.m_now % 1'000'000;
        return 0;
    }

    static int usleep(CFakeBus& bus, useconds_t microseconds)
    {
        bus.m_calls += QString("usleep(%1)").arg(microseconds);
        if (const auto* failure = bus.failure(CFakeBus::Usleep))
            return failure->result;
        bus.m_now += microseconds;
        return 0;
    }
};

int __wrap_socket(int family, int type, int protocol)
{
    CFakeBus* bus = CFakeBusCalls::bus();
    return bus != nullptr ? CFakeBusCalls::socket(*bus, family, type, protocol) : __real_socket(family, type, protocol);
}

int __wrap_fcntl(int descriptor, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    const long argument = va_arg(arguments, long);
    va_end(arguments);
    CFakeBus* bus = CFakeBusCalls::busOf(descriptor);
    return bus != nullptr ? CFakeBusCalls::fcntl(*bus, descriptor, command, argument)
                          : __real_fcntl(descriptor, command, argument);
}

int __wrap_bind(int socket, const sockaddr* address, socklen_t size)
{
    CFakeBus* bus = CFakeBusCalls::busOf(socket);
    return bus != nullptr ? CFakeBusCalls::bind(*bus, socket, address, size) : __real_bind(socket, address, size);
}

int __wrap_ioctl(int descriptor, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    CFakeBus* bus = CFakeBusCalls::busOf(descriptor);
    return bus != nullptr ? CFakeBusCalls::ioctl(*bus, request, argument) : __real_ioctl(descriptor, request, argument);
}

ssize_t __wrap_write(int descriptor, const void* data, size_t size)
{
    CFakeBus* bus = CFakeBusCalls::busOf(descriptor);
    return bus != nullptr ? CFakeBusCalls::write(*bus, descriptor, data, size) : __real_write(descriptor, data, size);
}

ssize_t __wrap_read(int descriptor, void* data, size_t size)
{
    CFakeBus* bus = CFakeBusCalls::busOf(descriptor);
    return bus != nullptr ? CFakeBusCalls::read(*bus, descriptor, data, size) : __real_read(descriptor, data, size);
}

int __wrap_select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout)
{
    for (int descriptor = 0; read != nullptr && descriptor < count; ++descriptor)
        if (FD_ISSET(descriptor, read) && CFakeBusCalls::busOf(descriptor) != nullptr)
            return CFakeBusCalls::select(*CFakeBusCalls::bus(), descriptor, read, write, except, timeout);
    return __real_select(count, read, write, except, timeout);
}

int __wrap_close(int descriptor)
{
    CFakeBus* bus = CFakeBusCalls::busOf(descriptor);
    return bus != nullptr ? CFakeBusCalls::close(*bus, descriptor) : __real_close(descriptor);
}

int __wrap_gettimeofday(timeval* now, void* zone)
{
    CFakeBus* bus = CFakeBusCalls::bus();
    return bus != nullptr ? CFakeBusCalls::gettimeofday(*bus, now) : __real_gettimeofday(now, zone);
}

int __wrap_usleep(useconds_t microseconds)
{
    CFakeBus* bus = CFakeBusCalls::bus();
    return bus != nullptr ? CFakeBusCalls::usleep(*bus, microseconds) : __real_usleep(microseconds);
}
