// Comma-separated values (RFC 4180), UTF-8.
// SPDX-License-Identifier: MIT
#include "sheets/Csv.h"

#include "dic/Utf8Text.h"

#include <algorithm>
#include <string_view>

namespace
{

constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

void append(QString& line, const QString& field)
{
    const bool plain = std::none_of(field.cbegin(), field.cend(), [](QChar character) {
        return character == u',' || character == u'"' || character == u'\n' || character == u'\r';
    });
    if (plain)
        line += field;
    else
        line += u'"' + QString(field).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

} // namespace

QByteArray csvLine(const QStringList& fields)
{
    constexpr qsizetype usualLength = 128;
    QString line;
    line.reserve(usualLength);
    for (const QString& field : fields) {
        if (&field != &fields.front())
            line += u',';
        append(line, field);
    }
    line += u'\n';
    return line.toUtf8();
}

QByteArray csvText(const std::vector<QStringList>& rows)
{
    QByteArray text;
    for (const QStringList& row : rows)
        text += csvLine(row);
    return text;
}

CCsvReader::CCsvReader(const QByteArray& text) : m_text(text)
{
    if (m_text.startsWith(byteOrderMark))
        m_place = sizeof byteOrderMark - 1;
}

bool CCsvReader::next(QStringList& fields)
{
    if (!m_error.isEmpty())
        return false;
    m_line = m_nextLine;
    while (takeLineEnd()) // empty lines
        m_line = m_nextLine;
    return !isAtEnd() && readRecord(fields);
}

bool CCsvReader::readRecord(QStringList& fields)
{
    fields.clear();
    while (true) {
        QString field;
        if (!readField(field))
            return false;
        fields.append(field);
        if (isAtEnd() || takeLineEnd())
            return true;
        if (m_text[m_place++] != ',')
            return refuse(QStringLiteral("text where a comma or the end of the line is needed"));
    }
}

bool CCsvReader::readField(QString& field)
{
    QByteArray bytes;
    if (!isAtEnd() && m_text[m_place] == '"') {
        if (!readQuoted(bytes))
            return false;
    } else {
        const auto isEnd = [](char byte) { return byte == ',' || byte == '\n' || byte == '\r' || byte == '"'; };
        const auto* const start = m_text.cbegin() + m_place;
        bytes = QByteArray(start, std::find_if(start, m_text.cend(), isEnd) - start);
        m_place += bytes.size();
        if (!isAtEnd() && m_text[m_place] == '"')
            return refuse(QStringLiteral("a quotation mark inside a field that does not begin with one"));
    }
    if (!bytes.isValidUtf8())
        return refuse(QStringLiteral("the text is not UTF-8"));
    field = textFromUtf8(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    return true;
}

// The place is at the opening quotation mark. A line that is never closed is told where it begins.
bool CCsvReader::readQuoted(QByteArray& bytes)
{
    const int line = m_nextLine;
    while (true) {
        const qsizetype end = m_text.indexOf('"', m_place + 1);
        if (end < 0) {
            m_line = line;
            return refuse(QStringLiteral("a quotation mark is not closed"));
        }
        const QByteArray part = m_text.mid(m_place + 1, end - m_place - 1);
        m_nextLine += static_cast<int>(part.count('\n'));
        bytes += part;
        m_place = end + 1;
        if (isAtEnd() || m_text[m_place] != '"')
            return true;
        bytes += '"'; // two of them stand for one
    }
}

bool CCsvReader::takeLineEnd()
{
    const QByteArrayView rest = QByteArrayView(m_text).sliced(m_place);
    const qsizetype size = rest.startsWith("\r\n") ? 2 : rest.startsWith('\n') ? 1 : 0;
    m_place += size;
    m_nextLine += size > 0 ? 1 : 0;
    return size > 0;
}

bool CCsvReader::refuse(const QString& error)
{
    m_error = error;
    return false;
}
