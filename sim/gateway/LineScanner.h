// A cursor over one gateway line: words and numbers separated by blanks and tabs.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/NumberText.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// Each function reads what it is named after and moves past it. One that fails returns false or no value.
class CLineScanner
{
public:
    explicit CLineScanner(const QByteArray& line) : m_line(line) { skipBlanks(); }

    bool atEnd() const { return m_position == m_line.size(); }

    /// One given character.
    bool character(char expected)
    {
        if (atEnd() || m_line[m_position] != expected)
            return false;
        ++m_position;
        skipBlanks();
        return true;
    }

    /// The characters up to the next blank or, when it is not 0, up to `stop`. Empty at the end of the line.
    QByteArray word(char stop = 0)
    {
        const qsizetype start = m_position;
        while (!atEnd() && !isBlank(m_line[m_position]) && (stop == 0 || m_line[m_position] != stop))
            ++m_position;
        QByteArray taken = m_line.mid(start, m_position - start);
        skipBlanks();
        return taken;
    }

    /// A number from 0 to `maximum`: decimal, "0x" hexadecimal or "0" octal.
    std::optional<quint32> number(quint32 maximum, char stop = 0)
    {
        const qsizetype start = m_position;
        const auto value = readNumber(QString::fromLatin1(word(stop)));
        if (value && !value->negative && value->bits <= maximum)
            return static_cast<quint32>(value->bits);
        m_position = start;
        return std::nullopt;
    }

    /// Whatever is left of the line, without blanks around it.
    QByteArray rest()
    {
        QByteArray taken = m_line.mid(m_position).trimmed();
        m_position = m_line.size();
        return taken;
    }

private:
    static bool isBlank(char c) { return c == ' ' || c == '\t'; }
    void skipBlanks()
    {
        while (!atEnd() && isBlank(m_line[m_position]))
            ++m_position;
    }

    QByteArray m_line;
    qsizetype m_position = 0;
};
