// What a check finds: order, columns and excerpts.
// SPDX-License-Identifier: MIT
#include "sheets/Findings.h"

#include "sheets/SheetLines.h"

#include "dic/DataSheet.h"
#include "dic/Utf8Text.h"

#include <algorithm>

namespace
{

// Characters before the place that an excerpt shows at most: a line of a message holds 80.
constexpr qsizetype mostBefore = 60;

int charactersOf(std::string_view utf8)
{
    return static_cast<int>(std::ranges::count_if(utf8, [](char byte) { return !isContinuation(byte); }));
}

// The longest end of `text` that needs no more than `mostBefore` characters when it is shown.
QString visibleEnd(const QString& text)
{
    QString end = text.right(mostBefore);
    while (visibleText(end).size() > mostBefore)
        end = end.right(end.size() - (visibleText(end).size() - mostBefore + 9) / 10);
    return end;
}

void complete(tFinding& finding, std::string_view line)
{
    const auto offset = std::min(static_cast<std::size_t>(finding.place.offset), line.size());
    const auto length = std::min(static_cast<std::size_t>(finding.place.length), line.size() - offset);
    finding.column = charactersOf(line.substr(0, offset)) + 1;
    finding.length = std::max(1, charactersOf(line.substr(offset, length)));
    const QString before = textFromUtf8(line.substr(0, offset));
    const QString kept = visibleEnd(before);
    const QString dots = kept.size() < before.size() ? QStringLiteral("...") : QString();
    finding.excerpt = dots + visibleLine(kept + textFromUtf8(line.substr(offset)));
    finding.caret = static_cast<int>(dots.size() + visibleText(kept).size());
    const auto room = static_cast<int>(finding.excerpt.size()) - finding.caret;
    const auto wanted = static_cast<int>(visibleText(textFromUtf8(line.substr(offset, length))).size());
    finding.caretLength = std::max(1, std::min(wanted, room));
}

} // namespace

QString shown(std::string_view utf8)
{
    constexpr std::size_t enough = 400; // bytes of more characters than a message shows
    return visibleLine(textFromUtf8(utf8.substr(0, enough)));
}

std::vector<tFinding> CFindings::take(const char* fileName, bool& isRead)
{
    const auto place = [](const tFinding& finding) { return std::pair(finding.place.line, finding.place.offset); };
    std::ranges::stable_sort(m_findings, {}, place);
    tSheetLine line;
    CSheetLines lines(m_findings.empty() ? "" : fileName);
    for (tFinding& finding : m_findings) {
        while (line.number < finding.place.line && lines.nextText(line)) {
        }
        if (line.number == finding.place.line)
            complete(finding, line.text);
        else
            finding.column = finding.length = 1; // the file has become shorter
    }
    isRead = isRead && (m_findings.empty() || lines.isWhole());
    return std::move(m_findings);
}
