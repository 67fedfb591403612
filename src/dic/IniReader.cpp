// The INI tokenizer.
// SPDX-License-Identifier: MIT
//
//     line    = [ header | item | comment ]            ended by LF or CR LF
//     header  = "[" name "]" rest
//     item    = name "=" value [ ";" anything ]        value: up to the semicolon, trimmed
//     comment = rest                                   begins with a blank, a tab or a semicolon
//     rest    = { blank | tab } [ ";" anything ]
//     name    = char { char }                          but not "_" alone
//     char    = letter | number | "_"                  of one UTF-16 unit
#include "dic/IniReader.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace
{

std::int32_t nLine = -1; // number of the line read last; -1: no file was opened yet
bool bSection = false;   // a section header was read, but none of its items returned yet

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

CIniReader::CIniReader(const char* fileName)
{
    if (m_file.open(fileName))
        nLine = 0;
}

int CIniReader::moveToNextItem()
{
    if (!m_file.isOpen())
        return -1;
    while (m_file.readLine(m_line)) {
        if (nLine < std::numeric_limits<std::int32_t>::max())
            ++nLine;
        const QStringView line = withoutLineEnd(m_line);
        if (line.isEmpty())
            continue;
        if (isCommentStart(line.front())) {
            if (!isRest(line))
                return 0;
        } else if (line.front() == u'[') {
            if (!readSectionHeader(line))
                return 0;
            bSection = true;
        } else {
            if (!readKeyLine(line))
                return 0;
            return std::exchange(bSection, false) ? 1 : 2;
        }
    }
    bSection = false;
    return -1;
}

bool CIniReader::readSectionHeader(QStringView line)
{
    m_section.clear();
    m_key.clear();
    m_value.clear();
    takeCharacter(line, u'[');
    m_section = takeName(line).toString();
    return takeCharacter(line, u']') && isName(m_section) && isRest(line);
}

bool CIniReader::readKeyLine(QStringView line)
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

int CIniReader::getLineOfError() const
{
    return nLine;
}

const char* CIniReader::version()
{
    return "$Rev: 1 $";
}
