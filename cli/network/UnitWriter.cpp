// Writing what belongs together: wholly, or not at all.
// SPDX-License-Identifier: MIT
#include "network/UnitWriter.h"

#include "console/Interrupt.h"
#include "dic/ValueTypes.h"
#include "network/TypedValue.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace
{

bool isSameParameter(const tSnapshotEntry& first, const tSnapshotEntry& second)
{
    return first.index == second.index && first.subIndex == second.subIndex;
}

} // namespace

std::optional<tFailure> CUnitWriter::send(const tWrite& write)
{
    const tSnapshotEntry& entry = *write.entry;
    endWhenInterrupted(); // before it is sent
    m_pending = tSent{ &entry, write.bytes };
    auto failure =
        m_device.network.write(static_cast<BYTE>(m_device.node), static_cast<WORD>(entry.index),
                               static_cast<BYTE>(entry.subIndex), write.bytes, isNumeric(valueType(entry.type)));
    if (!failure || failure->status != exitNetwork)
        m_pending.reset(); // it is written, or it is not
    if (failure)
        return failure;
    const auto known = std::find_if(m_sent.begin(), m_sent.end(),
                                    [&entry](const tSent& sent) { return isSameParameter(*sent.entry, entry); });
    if (known == m_sent.end())
        m_sent.push_back({ &entry, write.bytes });
    else
        known->bytes = write.bytes;
    return std::nullopt;
}

void CUnitWriter::writeBack()
{
    std::vector<const tSnapshotEntry*> former;
    for (const tSnapshotEntry& entry : m_former.entries)
        if (entry.value && std::any_of(m_sent.cbegin(), m_sent.cend(),
                                       [&entry](const tSent& sent) { return isSameParameter(*sent.entry, entry); }))
            former.push_back(&entry);
    bool isDone = former.size() == m_sent.size();
    if (isDone)
        for (const tWrite& write : orderOfWrites(former, m_former, m_former))
            isDone = isDone && !send(write);
    if (!isDone)
        m_halfWay.insert(m_halfWay.end(), m_sent.cbegin(), m_sent.cend());
    else if (!former.empty())
        m_device.console.message(QStringLiteral("as before again: %1").arg(namesOf(former)));
    m_sent.clear();
}

QString CUnitWriter::textOf(const tSent& sent)
{
    const QString value = typedValue::textOf(sent.entry->type, sent.bytes, valueFormats::modeHex);
    return QStringLiteral("%1 = %2").arg(nameOf(*sent.entry), value);
}

QString CUnitWriter::halfWay() const
{
    QStringList texts;
    for (const auto* sents : { &m_halfWay, &m_sent })
        for (const tSent& sent : *sents)
            texts += textOf(sent);
    return texts.join(QStringLiteral(", "));
}

QString CUnitWriter::uncertain() const
{
    return m_pending ? textOf(*m_pending) : QString();
}
