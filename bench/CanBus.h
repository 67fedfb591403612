// The bus vcan0 for the benchmarks, with a node that answers at once.
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <thread>

struct can_frame;

/// On the bus for as long as the object lives.
class CCanBus
{
public:
    static constexpr uint8_t node = 5;
    static constexpr uint32_t number = 0x12345678; ///< the value of 1000h
    static constexpr int longSize = 10000;         ///< bytes of every other object
    static constexpr uint32_t messageId = 0x185;   ///< of the messages that `send` sends

    /// @throws std::runtime_error without vcan0
    CCanBus();
    ~CCanBus();
    CCanBus(const CCanBus&) = delete;
    CCanBus& operator=(const CCanBus&) = delete;

    /// A socket like that of the CAN controller, for a bare loop, which closes it.
    static int openSocket();

    /// The node sends so many messages of eight bytes that are numbered from `first` on, see `numberOf`.
    /// @return false when one could not be sent
    bool send(uint32_t first, int messages) const;
    static uint32_t numberOf(const uint8_t* data);

    /// The node answers SDO transfers from now on.
    void answer();
    /// What it has, and takes, as the data of a long object.
    static const std::array<uint8_t, longSize>& longData();
    /// True once for each download that brought just these bytes.
    bool takeDownload() { return m_downloaded.exchange(false); }

private:
    void serve();

    const int m_socket;
    std::atomic<bool> m_downloaded = false;
    std::atomic<bool> m_ending = false;
    std::thread m_node;
};
