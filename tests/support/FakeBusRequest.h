// One step of the fake CAN bus's script: a frame that is expected, and what answers it.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <vector>

class CFakeBusRequest
{
public:
    explicit CFakeBusRequest(const QString& frame) : m_frame(frame) {}

    /// An answer, up to eight bytes in hexadecimal. Any number of them, in order.
    CFakeBusRequest& answer(uint32_t id, const char* data);
    /// The answers that follow come so many milliseconds later (they add up).
    CFakeBusRequest& after(int milliseconds);

    struct tAnswer {
        qint64 delay; ///< µs after the request
        QByteArray bytes;
    };
    const QString& frame() const { return m_frame; }
    const std::vector<tAnswer>& answers() const { return m_answers; }

private:
    QString m_frame;
    qint64 m_delay = 0;
    std::vector<tAnswer> m_answers;
};

/// The 16 bytes of a frame: `data` in hexadecimal, then 0xEE; `length` -1 stands for as many as there are in `data`.
QByteArray fakeBusFrame(uint32_t id, int length, const char* data);
/// A frame as text, see CFakeBus; of another size only "8 bytes".
QString fakeBusText(const void* bytes, size_t size);
