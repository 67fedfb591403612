// A CAN bus for the benchmarks, with a node that answers at once.
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <thread>

struct can_frame;

/// How frames are sent: on vcan0, or between two local sockets, which every machine has and which take about as long.
enum TCanBus { busVcan0, busSockets };

/// A bus for as long as the object lives; only one object at a time. When the CAN controller opens vcan0, it gets a
/// socket of this bus.
class CCanBus
{
public:
    explicit CCanBus(TCanBus bus);
    ~CCanBus();
    CCanBus(const CCanBus&) = delete;
    CCanBus& operator=(const CCanBus&) = delete;

    bool isOpen() const { return m_nodeSocket >= 0; }
    /// A socket like that of the CAN controller, for a bare loop, which closes it; -1 when there is none.
    int openMasterSocket() const;
    /// The node sends so many frames. @return false when one did not fit
    bool fill(int frames) const;

    /// The node answers every SDO upload from now on: 1000h expedited, others with `uploadSize` bytes in segments.
    void answer();
    static constexpr int uploadSize = 10000;

private:
    void serve() const;

    int m_masterSocket = -1; // -1 on vcan0
    int m_nodeSocket = -1;
    std::atomic<bool> m_ending = false;
    std::thread m_node;
};
