// Checks any bytes as a data sheet: the lines agree with the reader of the browser, and the text is printable.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"
#include "MemoryFile.h"

#include "dic/IniReader.h"
#include "sheets/FindingsText.h"
#include "sheets/SheetLines.h"

#include <algorithm>
#include <string>

// The next item, or a line that breaks the grammar; false at the end.
static bool nextItem(CSheetLines& lines, tSheetLine& line, std::string& section)
{
    while (lines.next(line)) {
        if (line.brokenRule != nullptr)
            return true;
        if (line.kind == lineHeader)
            section = line.name;
        if (line.kind == lineItem)
            return true;
    }
    return false;
}

static void compareWithReader(const char* fileName)
{
    CIniReader reader(fileName);
    CSheetLines lines(fileName);
    tSheetLine line;
    std::string section;
    while (true) {
        const int result = reader.moveToNextItem();
        const bool found = nextItem(lines, line, section);
        require(found == (result >= 0));
        if (!found)
            return;
        require((line.brokenRule != nullptr) == (result == 0));
        if (result == 0) {
            require(line.number == reader.getLineOfError());
            require(line.brokenRule == std::string(reader.ruleOfError()));
            return;
        }
        require(section == reader.section());
        require(line.name == reader.keyName());
        require(std::string(line.value).c_str() == std::string(reader.keyValue())); // up to a zero byte
    }
}

static void checkText(const char* fileName)
{
    const tCheckResult result = checkSheet(QString::fromLocal8Bit(fileName), tRuleSet().set());
    require(result.isRead);
    int last = 0;
    for (const tFinding& finding : result.findings) {
        require(finding.place.line >= last && finding.column > 0 && finding.length > 0);
        const qsizetype end = qsizetype{ finding.caret } + finding.caretLength;
        require(finding.caret >= 0 && end <= std::max<qsizetype>(finding.excerpt.size(), finding.caret + 1));
        last = finding.place.line;
    }
    const QString text = findingsText(result);
    require(std::all_of(text.begin(), text.end(), [](QChar c) {
        return c == u'\n' || (c.category() != QChar::Other_Control && c.category() != QChar::Other_Format);
    }));
    if (result.findings.size() < 100) {
        const tCheckResult results[] = { result };
        require(!findingsJson(results).isEmpty() && !findingsSarif(results).isEmpty());
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const CMemoryFile file(data, size);
    compareWithReader(file.name());
    checkText(file.name());
    return 0;
}
