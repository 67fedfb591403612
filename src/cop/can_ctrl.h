// Parameters of a CAN interface for the CANopen master over SocketCAN.
// SPDX-License-Identifier: MIT
#pragma once

/// The Linux network interface to use and how its raw socket is opened.
struct _can_param {
    const char* ifname; ///< name of the network interface, at most 16 characters are used
    int family;         ///< protocol family, 29 (PF_CAN)
    int type;           ///< socket type, 3 (SOCK_RAW)
    int protocol;       ///< protocol, 1 (CAN_RAW)
};
