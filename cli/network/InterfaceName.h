// The name of an interface on the command line.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Whether the text can name an interface: a CAN interface, or the address and port of a gateway, whose numbers are in
/// their ranges. The browser takes more texts for a gateway or a CAN interface, and then another one than was named.
///
///     "can0", "localhost:60000", "192.168.1.10:5000"
bool isInterfaceName(const QString& text);
