// Findings as text: places, excerpts and carets, whatever bytes a sheet holds; and how many of them are kept.
// SPDX-License-Identifier: MIT
#include "sheets/FindingsText.h"

#include "FindingLines.h"
#include "SheetFile.h"

#include <QTest>

namespace
{

// What follows the name of the file in the finding of a sheet that has one.
QStringList findingOf(const QByteArray& sheet, tRule rule)
{
    const CSheetFile file(sheet);
    const QString text = findingsText(checkSheet(file.name(), tRuleSet().set(rule)));
    QStringList lines = text.split('\n', Qt::SkipEmptyParts);
    lines = lines.mid(1, lines.size() - 2); // without the verdict and the counts
    return lines.replaceInStrings(file.name() + ':', "");
}

bool isPrintable(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c == '\n' || c.isPrint(); });
}

} // namespace

class TestFindings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findingShowsLineCaretAndMend();
    void columnsAreCharacters();
    void controlCharactersAreEscapedAndTheCaretStaysBelow();
    void placeFarInALongLineIsShown();
    void lineOfAHundredMegabytesNeedsLittleText();
    void millionSectionsAreCheckedInMemoryOfTheirSize();
    void onlySoManyFindingsOfARuleAreKept();
    void anyBytesGivePrintableText();
    void fileNameIsEscaped();
    void missingFileIsNotRead();
};

void TestFindings::findingShowsLineCaretAndMend()
{
    const QStringList expected = { "3:1: error: a key is NAME=VALUE, the name of letters, digits and \"_\" only; "
                                   "a comment begins with \";\" [syntax]",
                                   "    #ParameterValue=0x2", "    ^", "    mend: begin a comment with \";\"" };
    QCOMPARE(findingOf("[2000]\nParameterName=a\n#ParameterValue=0x2\n", ruleSyntax), expected);
    QCOMPARE(findingOf("[DeviceInfo]\nVendorNumber=many\n[2000]\nObjectType=7\n", ruleNotANumber),
             QStringList({ "2:14: warning: this is no number, and the browser takes it as 0 [not-a-number]",
                           "    VendorNumber=many", "                 ^~~~", "    mend: 0 to 4294967295" }));
    QCOMPARE(findingOf("[DeviceInfo]\nVendorName=x\nProductNmber=5\n[2000]\nObjectType=7\n", ruleUnknownKey).last(),
             "    mend: ProductNumber");
    QCOMPARE(findingOf("[OptionlObject]\nx=5\n[2000]\nObjectType=7\n", ruleUnknownSection).last(),
             "    mend: [OptionalObjects]");
}

void TestFindings::columnsAreCharacters()
{
    const QByteArray sheet = "[2000]\nN\xC3\xA4me\xE2\x82\xAC=1\nObjectType=7\n";
    QCOMPARE(findingOf(sheet, ruleSyntax).mid(1, 2), QStringList({ "    N\u00E4me\u20AC=1", "        ^" }));
    QVERIFY(findingOf(sheet, ruleSyntax).first().startsWith("2:5: "));
}

void TestFindings::controlCharactersAreEscapedAndTheCaretStaysBelow()
{
    const QStringList lines = findingOf("[2000]\n\t\x1B[31mred=1\nObjectType=7\n", ruleSyntax);
    QVERIFY(lines.first().startsWith("2:2: "));
    QCOMPARE(lines.mid(1, 2), QStringList({ "    \\t\\x1B[31mred=1", "      ^~~~" }));
    for (const QString& line : lines)
        QVERIFY(isPrintable(line));
}

void TestFindings::placeFarInALongLineIsShown()
{
    const QStringList lines = findingOf("[2000]\n" + QByteArray(1000, 'a') + "\x01-=1\nObjectType=7\n", ruleSyntax);
    QVERIFY(lines.first().startsWith("2:1001: "));
    QVERIFY(lines[1].startsWith("    ...aaa"));
    QCOMPARE(lines[1].mid(lines[2].indexOf('^')), "\\x01-=1");
    const QStringList escaped = findingOf("[2000]\n" + QByteArray(1000, '\x01') + "\n", ruleSyntax);
    QVERIFY(escaped[1].size() <= 4 + 3 + 80 + 3);
}

void TestFindings::lineOfAHundredMegabytesNeedsLittleText()
{
    const CSheetFile file("[2000]\nObjectType=7\n" + QByteArray(100'000'000, '-'));
    const tCheckResult result = checkSheet(file.name(), allRules());
    QVERIFY(!result.isLoaded);
    QCOMPARE(result.counts[ruleSyntax], (100'000'000 + 0xFFFF) / 0x10000);
    QVERIFY(findingsText(result).size() < 1'000'000);
}

void TestFindings::millionSectionsAreCheckedInMemoryOfTheirSize()
{
    QByteArray sheet = "[2000]\nObjectType=7\n";
    for (int n = 0; n < 1'000'000; ++n)
        sheet += "[" + QByteArray::number(0x1000 + n % 0xF000, 16) + "]\na=1\n";
    const CSheetFile file(sheet);
    const tCheckResult result = checkSheet(file.name(), allRules());
    QVERIFY(result.isLoaded);
    QCOMPARE(result.counts[ruleUnknownKey], 1'000'000);
    QCOMPARE(result.counts[ruleDuplicateSection], 1'000'000 - 0xF000 + 1);
    QVERIFY(int(result.findings.size()) < int(ruleTotal) * CFindings::mostOfARule);
}

void TestFindings::onlySoManyFindingsOfARuleAreKept()
{
    const CSheetFile file("[2000]\nObjectType=7\n" + QByteArray("#\n").repeated(CFindings::mostOfARule + 5));
    const tCheckResult result = checkSheet(file.name(), tRuleSet().set(ruleSyntax));
    QCOMPARE(int(result.findings.size()), CFindings::mostOfARule);
    QCOMPARE(result.count(severityError), CFindings::mostOfARule + 5);
    const QStringList lines = findingsText(result).split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.mid(lines.size() - 2),
             QStringList({ file.name() + ": 5 more of [syntax]", file.name() + ": 1005 errors, 0 warnings, 0 notes" }));
}

void TestFindings::anyBytesGivePrintableText()
{
    QByteArray sheet = "[2000]\nObjectType=7\n[FileInfo]\n";
    for (int byte = 0; byte < 256; ++byte)
        sheet += QByteArray("[") + char(byte) + "]\n" + char(byte) + "=" + char(byte) + "\nVendor" + char(byte) + "\n";
    for (const char* prefix : { "", "\xC3\xA4" }) { // as Windows-1252, in any case
        const CSheetFile file(sheet + prefix);
        const tCheckResult result = checkSheet(file.name(), allRules());
        QVERIFY(result.findings.size() > 256);
        QVERIFY(isPrintable(findingsText(result)));
    }
}

void TestFindings::fileNameIsEscaped()
{
    const CSheetFile file("[2000]\nObjectType=7\n", "a\x1B[2J.eds");
    const QString text = findingsText(checkSheet(file.name(), allRules()));
    QVERIFY(isPrintable(text));
    QVERIFY(text.contains("a\\x1B[2J.eds:1:1: "));
}

void TestFindings::missingFileIsNotRead()
{
    const tCheckResult result = checkSheet("/no/such/sheet.eds", allRules());
    QVERIFY(!result.isRead && !result.isLoaded && result.findings.empty());
    QCOMPARE(result.verdict, "no such file: /no/such/sheet.eds");
}

QTEST_APPLESS_MAIN(TestFindings)
#include "TestFindings.moc"
