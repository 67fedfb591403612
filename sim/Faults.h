// Misbehaviour on request: the kinds of faults, and which SDO accesses a fault hits.
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

#include <optional>

struct tCanFault;
struct tGatewayFault;

/// The ways to the simulated devices.
enum tFrontEnd { frontGateway = 1, frontCan = 2 };

/// Whether a number stands behind the kind.
enum tFaultNumber { numberNone, numberOptional, numberNeeded };

/// What can go wrong. A kind is known to one front-end or to both; null stands for the one that does not know it.
struct tFaultKind {
    const char* name;
    const char* what; // for the help
    tFaultNumber number;
    quint32 argument; // unless another is given
    quint32 highest;
    const tGatewayFault* gateway;
    const tCanFault* can;

    bool isFor(tFrontEnd front) const { return front == frontGateway ? gateway != nullptr : can != nullptr; }
};

/// A fault as it was asked for.
struct tFault {
    const tFaultKind* kind = nullptr;
    quint32 argument = 0;
    std::optional<quint32> index;    // none: every SDO access
    std::optional<quint32> subIndex; // none: every entry of the object

    bool hits(quint32 atIndex, quint32 atSubIndex) const;
};

/// Reads "KIND[=NUMBER][@INDEX[:SUB]]", with the index and the sub-index in hexadecimal as in a data sheet, with or
/// without "0x": "silence", "delay=200@2000", "abort=0x06060000@0x2000:1". When it is none, `message` says why.
std::optional<tFault> readFault(const QString& text, QString* message);

/// The first fault that the front-end knows and that hits the entry; null when none does.
const tFault* findFault(const QList<tFault>& faults, tFrontEnd front, quint32 index, quint32 subIndex);

/// One line for each kind, for the help, under a heading for each set of front-ends.
QString faultHelp();
