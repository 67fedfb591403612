// Reads the sections of a sheet: names and keys.
// SPDX-License-Identifier: MIT
#include "sheets/SectionReader.h"

#include "sheets/SectionChecks.h"

#include "base/Digits.h"
#include "dic/EdsGrammar.h"
#include "dic/IniGrammar.h"

#include <algorithm>
#include <utility>

namespace
{

tPlace placeOf(const tSheetLine& line, std::string_view part)
{
    return { line.number, static_cast<int>(line.offsetOf(part)), static_cast<int>(part.size()) };
}

bool isAtCarriageReturn(const tSheetLine& line)
{
    return line.brokenAt < line.text.size() && line.text[line.brokenAt] == '\r';
}

// A line end that the browser does not take for one.
tAdvice adviceOnLineEnds()
{
    return { QStringLiteral("a carriage return (CR) alone ends no line for the browser"),
             QStringLiteral("save the file with LF or CR LF at the ends of lines") };
}

// How to mend a line that the browser stops at.
QString mendOf(const tSheetLine& line)
{
    if (line.kind == lineComment)
        return QStringLiteral("begin a comment with \";\"");
    if (line.kind == lineHeader && !line.name.empty())
        return QStringLiteral("[%1]").arg(shown(line.name));
    if (line.kind == lineHeader)
        return QStringLiteral("[NAME], or begin a comment with \";\"");
    if (line.brokenRule == iniGrammar::ruleOfTheFirstKey)
        return QStringLiteral("put the line into a section, or begin a comment with \";\"");
    if (line.kind == lineItem)
        return QStringLiteral("%1=%2").arg(shown(line.name), shown(line.value));
    return QStringLiteral("NAME=VALUE, or begin a comment with \";\"");
}

// The number after the prefix: digits of the base up to the end. False where that is none, or a long one.
bool takeNumber(std::string_view name, const tNumberedKeys& keys, unsigned& number)
{
    constexpr std::size_t mostDigits = 7;
    if (keys.base == 0 || !name.starts_with(keys.prefix))
        return false;
    name.remove_prefix(keys.prefix.size());
    number = 0;
    for (const char digit : name) {
        if (digitOf(digit) >= keys.base)
            return false;
        number = number * keys.base + digitOf(digit);
    }
    return !name.empty() && name.size() <= mostDigits;
}

long long contentOf(std::string_view value)
{
    constexpr std::size_t longest = 32; // no number of 32 bits is longer, but for zeros
    unsigned long number = 0;
    char text[longest + 1] = {};
    if (value.size() > longest)
        return -1;
    std::ranges::copy(value, text);
    return Ascii2Unsigned32(text, &number) ? static_cast<long long>(number) : -1;
}

} // namespace

void CSectionReader::take(const tSheetLine& line)
{
    if (line.brokenRule != nullptr)
        reportBroken(line);
    else
        reportLineEnd(line);
    if (line.kind == lineHeader)
        beginSection(line);
    else if (line.kind == lineItem && m_isOpen)
        takeItem(line);
}

void CSectionReader::reportBroken(const tSheetLine& line)
{
    const bool isFirst = !std::exchange(m_model.isBroken, true);
    if (!isFirst && !m_otherCharacters.empty())
        return; // none of its lines is one
    const auto at = static_cast<int>(line.brokenAt);
    m_findings.add(ruleSyntax, { line.number, at, 1 }, [&] {
        if (!m_otherCharacters.empty())
            return tAdvice{ QStringLiteral("the file is %1, but the browser reads UTF-8 and Windows-1252 only")
                                .arg(latin(m_otherCharacters)),
                            QStringLiteral("save the file as UTF-8") };
        return isAtCarriageReturn(line) ? adviceOnLineEnds()
                                        : tAdvice{ QString::fromLatin1(line.brokenRule), mendOf(line) };
    });
}

// Of a line that the browser takes for one, although it goes on after a carriage return.
void CSectionReader::reportLineEnd(const tSheetLine& line)
{
    const auto at = m_otherCharacters.empty() ? line.text.find('\r') : std::string_view::npos;
    if (at != std::string_view::npos && line.text.find_first_not_of('\r', at) != std::string_view::npos)
        m_findings.add(ruleLineEnds, { line.number, static_cast<int>(at), 1 }, adviceOnLineEnds);
}

void CSectionReader::beginSection(const tSheetLine& line)
{
    endSection();
    m_isOpen = true;
    m_section.name = sectionOf(line.name);
    m_section.place = line.name.empty() ? tPlace{ line.number, 0, 1 } : placeOf(line, line.name);
    m_section.isEmpty = true;
    m_section.numbered.clear();
    for (std::size_t place = 0; place < m_section.name.row->keys.size(); ++place)
        m_section.fields[place].line = 0;
    reportName(line);
    noteNamed();
}

// What is to be said of the name alone.
void CSectionReader::reportName(const tSheetLine& line)
{
    const tSectionName& name = m_section.name;
    if (name.isIgnored)
        m_findings.add(ruleIgnoredSection, m_section.place, [&] {
            return tAdvice{ QStringLiteral("the browser ignores the section: no index and no sub-index but 0 may begin "
                                           "with 0"),
                            sectionText(name) };
        });
    else if (!name.spelling.empty())
        m_findings.add(ruleSpelling, m_section.place, [&] {
            return tAdvice{ QStringLiteral("the browser ignores the section: it tells upper from lower case"),
                            QStringLiteral("[%1]").arg(latin(name.spelling)) };
        });
    else if (name.row->kind == sectionUnknown && !line.name.empty())
        m_findings.add(ruleUnknownSection, m_section.place, [&] {
            const std::string_view near = nearestSection(line.name);
            return tAdvice{ QStringLiteral("CiA 306 knows no section of this name, and the browser ignores it"),
                            near.empty() ? QString() : QStringLiteral("[%1]").arg(latin(near)) };
        });
    else if (name.row->kind == sectionModule && !std::exchange(m_hasModules, true))
        m_findings.add(ruleModules, m_section.place, [] {
            return tAdvice{ QStringLiteral("the browser knows no modules: their objects are in no list and no dump"),
                            {} };
        });
    if (!m_model.isDcf && (name.row->use & keyOfDcf) != 0)
        m_findings.add(ruleDcfInEds, m_section.place, [] {
            return tAdvice{ QStringLiteral("only a configured device has this section: a file that ends in .dcf"), {} };
        });
}

// Sections with a name of their own: the first one counts, and there is only one.
void CSectionReader::noteNamed()
{
    const tSectionRow* const row = m_section.name.row;
    if (row->name.empty() || m_section.name.index != 0) // index: names of a compact object
        return;
    if (std::ranges::find(m_named, row) != m_named.end()) {
        m_findings.add(ruleDuplicateSection, m_section.place, [row] {
            return tAdvice{ QStringLiteral("[%1] is there twice").arg(latin(row->name)), {} };
        });
        return;
    }
    m_named.push_back(row);
    if (row->kind == sectionFileInfo)
        m_model.fileInfo = m_section.place;
    else if (row->kind == sectionDeviceInfo)
        m_model.deviceInfo = m_section.place;
    else if (row->kind == sectionMandatory)
        m_model.mandatoryObjects = m_section.place;
}

void CSectionReader::takeItem(const tSheetLine& line)
{
    m_section.isEmpty = false;
    const tSectionRow& row = *m_section.name.row;
    if (row.kind == sectionFree || row.kind == sectionModule || row.kind == sectionUnknown)
        return;
    if (const int place = placeOfKey(row.keys, line.name); place >= 0)
        store(static_cast<std::size_t>(place), line);
    else if (!takeNumbered(line))
        takeOddKey(line);
}

bool CSectionReader::takeNumbered(const tSheetLine& line)
{
    unsigned number = 0;
    if (!takeNumber(line.name, m_section.name.row->numbered, number))
        return false;
    m_section.numbered.push_back(
        { number, placeOf(line, line.name), placeOf(line, line.value), contentOf(line.value) });
    return true;
}

// A key that is none of the section's, or is written in another case.
void CSectionReader::takeOddKey(const tSheetLine& line)
{
    const tSectionRow& row = *m_section.name.row;
    const int place = placeOfKeyInAnyCase(row.keys, line.name);
    const bool isList = isObjectList(row.kind);
    if (isList)
        noteListed(line);
    if (place < 0) {
        m_findings.add(ruleUnknownKey, placeOf(line, line.name), [&] {
            const std::string_view near = nearestKey(row, line.name);
            return tAdvice{ isList
                                ? QStringLiteral("no number of a line, but the browser lists the object of its value")
                                : QStringLiteral("CiA 306 knows no key of this name in such a section"),
                            latin(near) };
        });
        return;
    }
    const tKeyRow& key = row.keys[static_cast<std::size_t>(place)];
    if ((key.use & keyRead) != 0)
        m_findings.add(ruleSpelling, placeOf(line, line.name), [&] {
            return tAdvice{ isList ? QStringLiteral(
                                         "the browser lists an object of this number: it tells upper from lower case")
                                   : QStringLiteral("the browser ignores the key: it tells upper from lower case"),
                            latin(key.name) };
        });
    store(static_cast<std::size_t>(place), line);
}

// The object that the browser lists for any key but the count.
void CSectionReader::noteListed(const tSheetLine& line)
{
    const long long index = contentOf(line.value);
    if (index > 0 && index <= 0xFFFF)
        m_model.listed.push_back(
            { static_cast<unsigned short>(index), m_section.name.row->kind, placeOf(line, line.value) });
}

void CSectionReader::store(std::size_t place, const tSheetLine& line)
{
    tField& field = m_section.fields[place];
    if (field.line != 0)
        m_findings.add(ruleDuplicateKey, placeOf(line, line.name), [&] {
            return tAdvice{
                QStringLiteral("the key is in this section a second time, first in line %1").arg(field.line), {}
            };
        });
    field.line = line.number;
    field.offset = line.value.data() != nullptr ? static_cast<int>(line.offsetOf(line.value)) : 0;
    field.text = line.value;
    const tKeyRow& key = m_section.name.row->keys[place];
    if ((key.use & keyOfDcf) != 0 && !m_model.isDcf)
        m_findings.add(ruleDcfInEds, placeOf(line, line.name), [] {
            return tAdvice{ QStringLiteral("only a configured device has this key: a file that ends in .dcf"), {} };
        });
}

void CSectionReader::endSection()
{
    if (m_isOpen)
        checkSection(m_section, m_model, m_findings);
    m_isOpen = false;
}
