// The log of the simulator.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <functional>

/// Takes one line of the log, without line end. An empty function: nothing is logged.
using tLog = std::function<void(const QByteArray&)>;
