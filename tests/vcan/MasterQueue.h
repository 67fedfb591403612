// Reads the queue of the CANopen master as texts.
// SPDX-License-Identifier: MIT
#pragma once

#include "CanFrameText.h"
#include "cop/cop_api.h"

#include <QStringList>

namespace masterQueue
{

struct tMessage {
    int32_t result;
    QString frame; // empty without one
};

/// The oldest message.
inline tMessage read()
{
    can_frame frame = {};
    short length = 0;
    const int32_t result = cop_queue_read(&frame.can_id, &length, frame.data);
    frame.len = static_cast<__u8>(length);
    return { result, result == 0 ? frameText(frame) : QString() };
}

/// All messages, from the oldest on.
inline QStringList readAll()
{
    QStringList frames;
    for (tMessage message = read(); message.result == 0; message = read())
        frames += message.frame;
    return frames;
}

} // namespace masterQueue
