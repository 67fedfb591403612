// TCP connections within the machine, for the benchmarks.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include <sched.h>

/// Owns the descriptor of a socket.
class CDescriptor
{
public:
    explicit CDescriptor(int descriptor) : m_descriptor(descriptor) {}
    CDescriptor(CDescriptor&& other) noexcept;
    ~CDescriptor();
    CDescriptor& operator=(CDescriptor&&) = delete;

    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// Keeps this thread, and those that it starts, on the processor that it runs on, for as long as the object lives. When
/// only one of two threads works at a time, the time then does not depend on whether the scheduler puts them on one
/// processor, nor on how long another one takes to wake up.
class COneProcessor
{
public:
    COneProcessor();
    ~COneProcessor();
    COneProcessor(const COneProcessor&) = delete;
    COneProcessor& operator=(const COneProcessor&) = delete;

private:
    cpu_set_t m_before = {};
};

// Both throw std::runtime_error when that is not possible.

/// A socket that accepts connections at `port`, which becomes any free one.
CDescriptor listenOnLoopback(uint16_t& port);
CDescriptor connectToLoopback(uint16_t port);

/// @return false when not all bytes could be sent
bool sendAll(int socket, const char* bytes, size_t size);
