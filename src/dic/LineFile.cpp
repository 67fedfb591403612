// Lines of a text file: one pass over the bytes finds the character set, a second one decodes block by block.
// SPDX-License-Identifier: MIT
#include "dic/LineFile.h"

#include <QFileInfo>

#include <algorithm>
#include <array>

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

} // namespace

bool CLineFile::open(const char* fileName)
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

bool CLineFile::readLine(QString& line)
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
QByteArrayView CLineFile::readBytes()
{
    m_bytes.resize(blockSize);
    const qint64 count = m_file.read(m_bytes.data(), std::min<qint64>(blockSize, m_bytesLeft));
    m_bytesLeft = count > 0 ? m_bytesLeft - count : 0;
    return QByteArrayView(m_bytes).first(std::max<qint64>(count, 0));
}

bool CLineFile::isUtf8()
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
bool CLineFile::decodeNextBlock()
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
