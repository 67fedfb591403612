// What becomes of the gateway's answers under a fault.
// SPDX-License-Identifier: MIT
#pragma once

#include "Faults.h"

#include <QByteArray>

struct tGatewayRequest;

/// How the answer lines reach the client.
enum tDelivery {
    deliverLines,    // at once; nothing when there are no lines
    deliverBytewise, // one byte at a time
    deliverDrop,     // the connection is closed instead
};

/// The gateway's side of a kind of fault.
struct tGatewayFault {
    tDelivery delivery;
    int (*delay)(quint32 argument);                                  // milliseconds before the answer; null for none
    QByteArray (*text)(quint32 argument);                            // answered in place of the command; null for none
    QByteArray (*lines)(quint32 sequence, const QByteArray& answer); // what is sent; null for the one right line
};

namespace gatewayFaults
{
extern const tGatewayFault silence, delay, drop, garbage, sequence, twoLines, bytewise, overlong, error, abort;
}

/// The first fault that hits the request; null when none does, as for all but SDO commands.
const tFault* findFault(const QList<tFault>& faults, const tGatewayRequest& request);

/// The bytes to send for an answer; `fault` may be null.
QByteArray answerLines(const tFault* fault, quint32 sequence, const QByteArray& answer);
