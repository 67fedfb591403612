// The command line of the simulator.
// SPDX-License-Identifier: MIT
#pragma once

#include "Faults.h"

#include <QHostAddress>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

struct tNodeOption {
    unsigned nodeId;
    QString fileName;
};

struct tOptions {
    QHostAddress address = QHostAddress(QHostAddress::LocalHost);
    std::optional<quint16> port; // 0: any free one; none: no gateway
    QString canInterface;        // empty: not on CAN
    QList<tNodeOption> nodes;
    QList<tFault> faults;
    bool verbose = false;
    bool timeStamps = false; // before the lines on standard output
    QString output;          // to be printed instead of running, for --help and --version
    QString error;           // what is wrong with the options; empty when they are right
};

/// Reads the arguments, the program's name first. Files are not opened.
tOptions readOptions(const QStringList& arguments);
