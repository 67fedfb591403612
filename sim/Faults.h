// Misbehaviour on request: which commands a fault hits and what becomes of their answers.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

#include <optional>

struct tGatewayRequest;

/// How the answer lines reach the client.
enum tDelivery {
    deliverLines,    // at once; nothing when there are no lines
    deliverBytewise, // one byte at a time
    deliverDrop,     // the connection is closed instead
};

/// What a gateway can do wrong; `faultKinds()` names all of them.
struct tFaultKind {
    const char* name;
    const char* what; // for the help
    bool argumentNeeded;
    quint32 argument; // unless another is given
    tDelivery delivery;
    int (*delay)(quint32 argument);                                  // milliseconds before the answer; null for none
    QByteArray (*text)(quint32 argument);                            // answered in place of the command; null for none
    QByteArray (*lines)(quint32 sequence, const QByteArray& answer); // what is sent; null for the one right line
};

/// A fault as it was asked for.
struct tFault {
    const tFaultKind* kind = nullptr;
    quint32 argument = 0;
    std::optional<quint32> index;    // none: every SDO command
    std::optional<quint32> subIndex; // none: every entry of the object

    bool hits(const tGatewayRequest& request) const;
};

/// Reads "KIND[=NUMBER][@INDEX[:SUB]]", with the index and the sub-index in hexadecimal as in a data sheet, with or
/// without "0x": "silence", "delay=200@2000", "abort=0x06060000@0x2000:1". When it is none, `message` says why.
std::optional<tFault> readFault(const QString& text, QString* message);

/// The first fault that hits the request; null when none does.
const tFault* findFault(const QList<tFault>& faults, const tGatewayRequest& request);

/// The bytes to send for an answer; `fault` may be null.
QByteArray answerLines(const tFault* fault, quint32 sequence, const QByteArray& answer);

/// One line for each kind, for the help.
QString faultHelp();
