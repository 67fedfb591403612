// A second tokenizer for data sheets.
// SPDX-License-Identifier: MIT
#include "ReferenceReader.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <utility>

namespace
{

constexpr qsizetype blockSize = 0x10000;

// The characters of the bytes 0x80 to 0x9F in Windows-1252; all others are those of Latin-1.
// clang-format off
constexpr std::array<char16_t, 32> windows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
// clang-format on

QString fromWindows1252(QByteArrayView bytes)
{
    QString text = QString::fromLatin1(bytes);
    for (QChar& c : text)
        if (0x80 <= c.unicode() && c.unicode() < 0xA0)
            c = windows1252[c.unicode() - 0x80U];
    return text;
}

bool isNameCharacter(QChar c)
{
    return c.isLetterOrNumber() || c == u'_';
}

bool isName(QStringView text)
{
    return !text.isEmpty() && text != QStringView(u"_");
}

// Removes all name characters at the start of `line` and returns them; there may be none.
QStringView takeName(QStringView& line)
{
    const auto end = std::find_if_not(line.begin(), line.end(), isNameCharacter);
    const QStringView name = line.first(end - line.begin());
    line = line.sliced(name.size());
    return name;
}

bool takeCharacter(QStringView& line, QChar c)
{
    if (!line.startsWith(c))
        return false;
    line = line.sliced(1);
    return true;
}

bool isRest(QStringView line)
{
    for (const QChar c : line) {
        if (c == u';')
            return true;
        if (c != u' ' && c != u'\t')
            return false;
    }
    return true;
}

QStringView withoutLineEnd(QStringView line)
{
    if (line.endsWith(u'\n'))
        line.chop(1);
    if (line.endsWith(u'\r'))
        line.chop(1);
    return line;
}

bool isCommentStart(QChar c)
{
    return c == u';' || c == u' ' || c == u'\t';
}

} // namespace

bool CReferenceLines::open(const char* fileName)
{
    const QString name = QFile::decodeName(fileName);
    if (!QFileInfo(name).isFile())
        return false;
    m_file.setFileName(name);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    const qint64 size = m_file.size();
    m_bytesLeft = size;
    if (isUtf8())
        m_decoder.emplace(QStringDecoder::Utf8);
    m_bytesLeft = m_file.seek(0) ? size : 0;
    return true;
}

bool CReferenceLines::readLine(QString& line)
{
    line.resize(0);
    while (!m_rest.isEmpty() || decodeNextBlock()) {
        const QStringView part = m_rest.first(std::min(m_rest.size(), maxLine - line.size()));
        const qsizetype lineFeed = part.indexOf(u'\n');
        line.append(lineFeed < 0 ? part : part.first(lineFeed + 1));
        m_rest = m_rest.sliced(lineFeed < 0 ? part.size() : lineFeed + 1);
        if (lineFeed >= 0 || line.size() == maxLine)
            return true;
    }
    return !line.isEmpty();
}

// The next block of the file; empty at its end or when it cannot be read.
QByteArrayView CReferenceLines::readBytes()
{
    m_bytes.resize(blockSize);
    const qint64 count = m_file.read(m_bytes.data(), std::min<qint64>(blockSize, m_bytesLeft));
    m_bytesLeft = count > 0 ? m_bytesLeft - count : 0;
    return QByteArrayView(m_bytes).first(std::max<qint64>(count, 0));
}

bool CReferenceLines::isUtf8()
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text;
    for (QByteArrayView bytes = readBytes(); !bytes.isEmpty(); bytes = readBytes()) {
        text = decoder.decode(bytes);
        if (decoder.hasError())
            return false;
    }
    text = decoder.decode("\n"); // an error if the file ends within a character
    return !decoder.hasError();
}

// Decodes the next block into `m_text`; false at the end of the file.
bool CReferenceLines::decodeNextBlock()
{
    do {
        const QByteArrayView bytes = readBytes();
        if (bytes.isEmpty())
            return false;
        if (m_decoder)
            m_text = m_decoder->decode(bytes);
        else
            m_text = fromWindows1252(bytes);
        m_rest = m_text;
    } while (m_rest.isEmpty()); // a short block may not complete a single character
    return true;
}

CReferenceReader::CReferenceReader(const char* fileName)
{
    m_file.open(fileName);
}

int CReferenceReader::moveToNextItem()
{
    if (!m_file.isOpen())
        return -1;
    while (m_file.readLine(m_line)) {
        ++m_lineNumber;
        const QStringView line = withoutLineEnd(m_line);
        if (line.isEmpty())
            continue;
        if (isCommentStart(line.front())) {
            if (!isRest(line))
                return 0;
        } else if (line.front() == u'[') {
            if (!readSectionHeader(line))
                return 0;
            m_sectionIsNew = true;
        } else {
            if (!readKeyLine(line))
                return 0;
            return std::exchange(m_sectionIsNew, false) ? 1 : 2;
        }
    }
    m_sectionIsNew = false;
    return -1;
}

bool CReferenceReader::readSectionHeader(QStringView line)
{
    m_section.clear();
    m_key.clear();
    m_value.clear();
    takeCharacter(line, u'[');
    m_section = takeName(line).toString();
    return takeCharacter(line, u']') && isName(m_section) && isRest(line);
}

bool CReferenceReader::readKeyLine(QStringView line)
{
    m_key.clear();
    m_value.clear();
    if (m_section.isEmpty())
        return false;
    m_key = takeName(line).toString();
    if (!takeCharacter(line, u'=') || !isName(m_key))
        return false;
    const qsizetype comment = line.indexOf(u';');
    m_value = (comment < 0 ? line : line.first(comment)).trimmed().toString();
    return true;
}
