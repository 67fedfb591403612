// A node with an SDO server on the fake CAN bus: it answers whatever the master sends, also after calls that failed.
// SPDX-License-Identifier: MIT
#pragma once

#include "FakeBus.h"

/// Node 5. Values are in `values`, by index << 8 | sub-index.
class CNodeOnBus : public CFakeBus
{
public:
    CNodeOnBus()
    {
        step = 1000; // a time-out is few polls
        before = [this](ECall call) {
            if (call == Select)
                answerAll();
        };
    }

    std::map<unsigned, QByteArray> values;

private:
    void answerAll()
    {
        for (; m_seen < written().size(); ++m_seen)
            if (written()[m_seen].startsWith("605: "))
                answer(QByteArray::fromHex(written()[m_seen].mid(5).toLatin1()));
    }

    void reply(QByteArray frame) { inject(0x585, frame.leftJustified(8, '\0').toHex(' ').constData()); }

    void answer(const QByteArray& frame)
    {
        const auto command = static_cast<unsigned char>(frame[0]);
        const QByteArray place = frame.mid(1, 3);
        const auto key = [&] {
            return unsigned(uchar(place[1])) << 16 | unsigned(uchar(place[0])) << 8 | unsigned(uchar(place[2]));
        };
        const QByteArray toggle(1, char(command & 0x10));
        const auto with = [&](int bits) { return QByteArray(1, char(toggle[0] | bits)); };
        switch (command >> 5) {
        case 0: // a segment of a download
            m_received += frame.mid(1, 7 - (command >> 1 & 7));
            if ((command & 1) != 0)
                values[m_key] = m_received;
            return reply(with(0x20));
        case 1: // a download begins
            m_key = key();
            m_received.clear();
            if ((command & 2) != 0)
                values[m_key] = frame.mid(4, 4 - (command >> 2 & 3));
            return reply(QByteArray(1, '\x60') + place);
        case 2: // an upload begins
            m_sent = values[key()];
            if (m_sent.size() <= 4)
                return reply(QByteArray(1, char(0x43 | (4 - m_sent.size()) << 2)) + place + m_sent);
            return reply(QByteArray(1, '\x41') + place + QByteArray(1, char(m_sent.size())));
        case 3: { // a segment of an upload
            const QByteArray segment = m_sent.left(7);
            m_sent.remove(0, segment.size());
            return reply(with(int(7 - segment.size()) << 1 | (m_sent.isEmpty() ? 1 : 0)) + segment);
        }
        default: // an abort
            return;
        }
    }

    qsizetype m_seen = 0; // frames of the master
    unsigned m_key = 0;   // of the download
    QByteArray m_received;
    QByteArray m_sent; // what is left of the upload
};
