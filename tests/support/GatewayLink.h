// A facade that is connected to a scripted gateway.
// SPDX-License-Identifier: MIT
#pragma once

#include "CANopenAccess.h"
#include "FakeGateway.h"

#include <QString>

struct CGatewayLink {
    CFakeGateway gateway;
    CCANopenAccess access;

    CGatewayLink()
    {
        _top_param address = { CFakeGateway::address, gateway.port(), { 1, 1, 255 } };
        if (!access.initialize(700, -1, &address, 0))
            qFatal("no connection to the scripted gateway");
    }
    /// Nothing when the script was played exactly, otherwise what differed.
    QString difference() const { return gateway.finished() ? QString() : QString::fromStdString(gateway.problem()); }
};
