// The lines of a data sheet, each told what it is.
// SPDX-License-Identifier: MIT
#include "sheets/SheetLines.h"

#include "dic/IniGrammar.h"

#include <limits>

using namespace iniGrammar;

namespace
{

void breakLine(tSheetLine& line, const char* rule, std::string_view at)
{
    line.brokenRule = rule;
    line.brokenAt = line.offsetOf(at);
}

bool isWholeName(std::string_view text)
{
    return isName(text) && nameAt(text).size() == text.size();
}

// How other programs begin a comment.
bool isForeignComment(std::string_view text)
{
    return text.starts_with('#') || text.starts_with('!') || text.starts_with("//");
}

// What a broken line would be with blanks where none may be, or with another sign before a comment.
void guess(tSheetLine& line)
{
    const std::string_view text = trimmed(line.text);
    line.kind = lineEmpty;
    line.name = line.value = {};
    if (isForeignComment(text)) {
        line.kind = lineComment;
    } else if (text.starts_with('[')) {
        const std::string_view name = trimmed(text.substr(1, text.find(']') - 1));
        line.kind = lineHeader;
        line.name = text.find(']') != std::string_view::npos && isWholeName(name) ? name : std::string_view();
    } else if (const auto equals = text.find('='); equals != std::string_view::npos) {
        const std::string_view name = trimmed(text.substr(0, equals));
        if (!isWholeName(name))
            return;
        line.kind = lineItem;
        line.name = name;
        const std::string_view rest = text.substr(equals + 1);
        line.value = trimmed(rest.substr(0, rest.find(';')));
    }
}

} // namespace

bool CSheetLines::nextText(tSheetLine& line)
{
    std::span<char> bytes = m_file.isOpen() ? m_file.takeLine() : std::span<char>();
    if (bytes.empty() && m_file.isOpen())
        bytes = m_file.readLine();
    if (bytes.empty())
        return false;
    if (m_number < std::numeric_limits<int>::max())
        ++m_number;
    line.number = m_number;
    line.text = withoutLineEnd(bytes);
    return true;
}

bool CSheetLines::next(tSheetLine& line)
{
    if (!nextText(line))
        return false;
    line.brokenRule = nullptr;
    take(line);
    if (line.brokenRule != nullptr)
        guess(line);
    m_hasSection = m_hasSection || line.kind == lineHeader;
    return true;
}

void CSheetLines::take(tSheetLine& line)
{
    if (line.text.empty()) {
        line.kind = lineEmpty;
    } else if (isCommentStart(line.text.front())) {
        line.kind = lineComment;
        if (!isRest(line.text))
            breakLine(line, ruleOfComments, line.text.substr(line.text.find_first_not_of(" \t")));
    } else if (line.text.front() == '[') {
        takeHeader(line);
    } else {
        takeItem(line);
    }
}

void CSheetLines::takeHeader(tSheetLine& line)
{
    line.kind = lineHeader;
    std::string_view rest = line.text.substr(1);
    line.name = nameAt(rest);
    rest.remove_prefix(line.name.size());
    if (!isName(line.name) || !takeCharacter(rest, ']'))
        breakLine(line, ruleOfSections, rest);
    else if (!isRest(rest))
        breakLine(line, ruleOfSections, rest.substr(rest.find_first_not_of(" \t")));
}

void CSheetLines::takeItem(tSheetLine& line)
{
    line.kind = lineItem;
    line.name = nameAt(line.text);
    std::string_view rest = line.text.substr(line.name.size());
    if (!m_hasSection) {
        breakLine(line, ruleOfTheFirstKey, line.text);
    } else if (!isName(line.name) || !takeCharacter(rest, '=')) {
        breakLine(line, ruleOfKeys, rest);
    } else {
        line.value = trimmed(rest.substr(0, rest.find(';')));
        if (line.value.empty())
            line.value = rest.substr(0, 0); // its place
    }
}
