// Network management commands.
// SPDX-License-Identifier: MIT
#pragma once

#include "network/Network.h"

#include <QString>
#include <QStringList>

/// The words of the commands: start, stop, preop, reset, reset-comm.
QStringList nmtWords();

/// Sends the command to a node, or to all with node 0. @return the exit status
int sendNmt(const tNetworkOptions& options, const QString& word, int node, CConsole& console);
