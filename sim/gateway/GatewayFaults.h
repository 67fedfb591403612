// The faults of the gateway: their kinds, and what each does to the answer of an SDO command.
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

/// The kinds that the gateway knows. Faults of other kinds hit no command.
tFaultKinds gatewayFaultKinds();

/// The first fault that hits the request; null when none does, as for all but SDO commands.
const tFault* findFault(const QList<tFault>& faults, const tGatewayRequest& request);

/// The answer in place of the command's; none when the command is carried out. `fault` may be null.
std::optional<QByteArray> faultAnswer(const tFault* fault);

/// Milliseconds that the fault adds before the answer; `fault` may be null.
int lineDelay(const tFault* fault);

/// The bytes to send for an answer; `fault` may be null.
QByteArray answerLines(const tFault* fault, quint32 sequence, const QByteArray& answer);

/// How these bytes are sent; `fault` may be null.
tDelivery lineDelivery(const tFault* fault);
