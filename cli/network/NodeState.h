// A node that is in pre-operational for the time in which its PDO parameters are written.
// SPDX-License-Identifier: MIT
#pragma once

#include "network/NodeReading.h"

/// Tells on standard error what it does with the node.
class CPreOperational
{
public:
    explicit CPreOperational(const tDevice& device) : m_device(device) {}

    /// Learns the state of the node, where it sends a heartbeat, and brings it into pre-operational. Ends the command
    /// with `exitNetwork` when the command cannot be sent.
    void begin();

    /// Brings the node back into its state. Where that was not learned, it is started, or with `start` false stays in
    /// pre-operational. Does nothing before `begin`.
    void end(bool start);

    /// Leaves the node in pre-operational, and tells so, also when that is not certain. Does nothing before `begin`.
    void abandon();

private:
    void send(bool (CCANopenAccess::*command)(BYTE node));
    void say(const char* what);

    const tDevice m_device;
    bool m_begun = false;
    bool m_isCertain = false; // the last command was answered, or has left on CAN
    int m_state = -1;         // as in heartbeats; -1: not known
};
