// A CAN bus for the benchmarks, with a node that answers at once.
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <thread>

struct can_frame;

/// Where frames travel: on vcan0, or between two local sockets, which every machine has and which cost about the same.
enum TCanBus { busVcan0, busSockets };

/// The bus while an object lives; one object at a time. The CAN controller, when it opens vcan0, gets a socket of this
/// bus.
class CCanBus
{
public:
    explicit CCanBus(TCanBus bus);
    ~CCanBus();
    CCanBus(const CCanBus&) = delete;
    CCanBus& operator=(const CCanBus&) = delete;

    bool isOpen() const { return m_far >= 0; }
    /// A socket like that of the CAN controller, which a bare loop uses in its place; -1 when there is none.
    int openNear() const;
    /// Puts so many frames onto the bus, from the other side. @return false when one did not fit
    bool fill(int frames) const;

    /// Answers every SDO upload: 1000h by four bytes at once, others by `uploadSize` bytes in segments.
    void answer();
    static constexpr int uploadSize = 10000;

private:
    void serve() const;

    int m_near = -1; // of the local sockets
    int m_far = -1;  // the other side
    std::atomic<bool> m_ending = false;
    std::thread m_node;
};
