// The INI tokenizer.
// SPDX-License-Identifier: MIT
#include "dic/IniReader.h"

#include "dic/IniGrammar.h"

#include <cstdint>
#include <limits>
#include <utility>

namespace
{

std::int32_t nLine = -1; // number of the line reached; -1: no file was opened yet
bool bSection = false;   // a section header was read and none of its items delivered

} // namespace

using namespace iniGrammar;

CIniReader::CIniReader(const char* fileName)
{
    if (m_file.open(fileName))
        nLine = 0;
}

int CIniReader::moveToNextItem()
{
    if (!m_file.isOpen())
        return -1;
    while (true) {
        std::span<char> bytes = m_file.takeLine();
        if (bytes.empty())
            bytes = readLine();
        if (bytes.empty())
            break;
        if (nLine < std::numeric_limits<std::int32_t>::max())
            ++nLine;
        const std::string_view line = withoutLineEnd(bytes);
        if (line.empty())
            continue;
        if (isCommentStart(line.front())) {
            if (!isRest(line))
                return refuse(line.data(), ruleOfComments);
        } else if (line.front() == '[') {
            if (!readSectionHeader(line))
                return 0;
            bSection = true;
        } else {
            if (!readKeyLine(line, bytes))
                return 0;
            return std::exchange(bSection, false) ? 1 : 2;
        }
    }
    bSection = false;
    return -1;
}

// Reads a line from the file. Key and value, part of an earlier one, are kept, since that ends.
std::span<char> CIniReader::readLine()
{
    m_key = m_keptKey = std::string(m_key);
    keepValue();
    return m_file.readLine();
}

bool CIniReader::readSectionHeader(std::string_view line)
{
    m_key = "";
    m_value = "";
    const char* const start = line.data();
    takeCharacter(line, '[');
    m_section = nameAt(line);
    line.remove_prefix(m_section.size());
    return (takeCharacter(line, ']') && isName(m_section) && isRest(line)) || refuse(start, ruleOfSections);
}

bool CIniReader::readKeyLine(std::string_view line, std::span<char> bytes)
{
    m_key = "";
    m_value = "";
    if (m_section.empty())
        return refuse(bytes.data(), ruleOfTheFirstKey);
    m_key = nameAt(line);
    line.remove_prefix(m_key.size());
    if (!takeCharacter(line, '=') || !isName(m_key))
        return refuse(bytes.data(), ruleOfKeys);
    m_value = trimmed(line.substr(0, line.find(';')));
    // A zero byte after the value: in the line where that goes on, else in a copy.
    char* const end = bytes.data() + (m_value.data() + m_value.size() - bytes.data());
    if (end != bytes.data() + bytes.size())
        *end = '\0';
    else
        keepValue();
    return true;
}

void CIniReader::keepValue()
{
    m_value = m_keptValue = std::string(m_value);
}

std::string_view CIniReader::textOfError() const
{
    return m_refusedLine != nullptr ? withoutLineEnd({ m_refusedLine, m_file.endOfLine() }) : std::string_view();
}

// `line` is the start of the line read last. Returns false.
bool CIniReader::refuse(const char* line, const char* rule)
{
    m_refusedLine = line;
    m_brokenRule = rule;
    return false;
}

int CIniReader::getLineOfError() const
{
    return nLine;
}

const char* CIniReader::version()
{
    return "$Rev: 1 $";
}
