// The text that names a CAN interface: a gateway address or the name of a SocketCAN network interface.
// SPDX-License-Identifier: MIT
#pragma once

#include "CANopenAccess.h"

/// The library to bind and the parameter records of both libraries; only the record of `library` is set from the text.
struct tInterface {
    short library = libraryNone;
    _can_param can = { "nul", 29, 3, 1 };                    // PF_CAN, SOCK_RAW, CAN_RAW
    _top_param top = { 0x7F000001UL, 60000, { 1, 1, 255 } }; // 127.0.0.1

    /// The record that belongs to the library.
    void* record();
};

/// Finds the library for an interface text; null leaves everything at its defaults. `text` must outlive the result,
/// whose `can.ifname` may point to it. Numbers are decimal, hexadecimal (0x) or octal (0), and anything may follow the
/// last one. They are not checked: a part of an address above 255 carries into the one before; the address is cut to 32
/// bits, a port to 16 bits.
///
///     "192.168.1.10:5000"   gateway 0xC0A8010A, port 5000
///     "localhost:4000"      gateway 127.0.0.1, port 4000
///     "can0", "10.0.0.1"    SocketCAN interface of that name
tInterface classifyInterface(const char* text);
