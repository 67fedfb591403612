// What the check says in words: the reason why no line of a file can be read, and mends, of which none may spoil
// another.
// SPDX-License-Identifier: MIT
#include "FindingLines.h"
#include "SheetFile.h"

#include <QTest>

namespace
{

// A sheet with these lists, and a section for each of the objects.
QByteArray sheetWithLists(const QByteArray& lists, const QList<int>& objects)
{
    QByteArray sheet = lists;
    for (const int index : objects)
        sheet += "[" + QByteArray::number(index, 16).toUpper() +
                 "]\nParameterName=V\nObjectType=7\nDataType=5\nAccessType=rw\n";
    return sheet;
}

// Each as "RULE: MEND".
QStringList mendsOf(const QByteArray& sheet)
{
    tRuleSet rules = allRules();
    for (const tRule rule : { ruleMissingSection, ruleMissingMandatory })
        rules.reset(rule);
    const CSheetFile file(sheet);
    QStringList mends;
    for (const tFinding& finding : checkSheet(file.name(), rules).findings) {
        const auto name = rowOf(finding.rule).name;
        mends += QString::fromUtf8(name.data(), qsizetype(name.size())) + ": " + finding.advice.mend;
    }
    return mends;
}

// A text in another encoding of Unicode.
QByteArray encoded(const QByteArray& text, int width, bool bigFirst, bool isMarked)
{
    QByteArray bytes;
    const QByteArray zeros(width - 1, '\0');
    for (const char c : text)
        bytes += bigFirst ? zeros + c : c + zeros;
    const QByteArray fill(width - 2, '\0');
    const QByteArray mark = bigFirst ? fill + "\xFE\xFF" : "\xFF\xFE" + fill;
    return isMarked ? mark + bytes : bytes;
}

} // namespace

class TestSheetMends : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mendsOfListsFitTogether_data();
    void mendsOfListsFitTogether();
    void otherCharacterSetIsTheReason_data();
    void otherCharacterSetIsTheReason();
    void carriageReturnIsTheReason();
    void whatTheBrowserDoesNotReadIsNotTakenAs0();
    void countInAnotherCaseListsAnObject();
    void verdictTellsObjectsWithoutEntries();
    void sectionThatIsThereTwiceIsTold();
    void gapsOfPdosAreExplained();
    void mappedBitsAreThoseThatCount_data();
    void mappedBitsAreThoseThatCount();
    void entriesBeforeTheirListAreTold();
    void objectOfAnOddLineIsListed();
};

void TestSheetMends::mendsOfListsFitTogether_data()
{
    QTest::addColumn<QByteArray>("sheet");
    QTest::addColumn<QStringList>("mends");
    const auto add = [](const char* name, const QByteArray& lists, const QList<int>& objects,
                        const QStringList& mends) { QTest::newRow(name) << sheetWithLists(lists, objects) << mends; };
    const QByteArray manufacturer = "[ManufacturerObjects]\nSupportedObjects=", optional = "[OptionalObjects]\n"
                                                                                           "SupportedObjects=";
    add("count too large", manufacturer + "3\n1=0x2000\n2=0x2001\n", { 0x2000, 0x2001 },
        { "count: SupportedObjects=2" });
    add("a line is missing", manufacturer + "2\n1=0x2000\n", { 0x2000, 0x2001 },
        { "count: none: 2 is right with the other mends of the lists",
          "unlisted-object: list it in [ManufacturerObjects]" });
    add("a line and its count are missing", manufacturer + "1\n1=0x2000\n", { 0x2000, 0x2001 },
        { "unlisted-object: list it in [ManufacturerObjects] (SupportedObjects=2 with all mends of the lists)" });
    add("a line is missing and the count is another", manufacturer + "5\n1=0x2000\n", { 0x2000, 0x2001 },
        { "count: SupportedObjects=2 with the other mends of the lists",
          "unlisted-object: list it in [ManufacturerObjects]" });
    add("an object is listed twice", manufacturer + "2\n1=0x2000\n2=0x2000\n", { 0x2000 },
        { "duplicate-index: remove the line (SupportedObjects=1 with all mends of the lists)" });
    add("an object is listed twice and counted once", manufacturer + "1\n1=0x2000\n2=0x2000\n", { 0x2000 },
        { "count: none: 1 is right with the other mends of the lists", "duplicate-index: remove the line" });
    add("an object is in the wrong list", manufacturer + "2\n1=0x2000\n2=0x6000\n" + optional + "1\n1=0x6001\n",
        { 0x2000, 0x6000, 0x6001 },
        { "wrong-list: list it in [OptionalObjects] (SupportedObjects=2 with all mends of the lists) and not in "
          "[ManufacturerObjects] (SupportedObjects=1 with all mends of the lists)" });
    add("a mandatory object is optional", "[MandatoryObjects]\nSupportedObjects=1\n" + optional + "1\n1=0x1000\n",
        { 0x1000 },
        { "count: none: 1 is right with the other mends of the lists",
          "wrong-list: list it in [MandatoryObjects] and not in [OptionalObjects] (SupportedObjects=0 with all mends "
          "of "
          "the lists)" });
    add("a number of a line is there twice", manufacturer + "3\n1=0x2000\n2=0x2001\n2=0x2002\n",
        { 0x2000, 0x2001, 0x2002 }, { "duplicate-key: " });
    add("a number of a line is missing", manufacturer + "2\n1=0x2000\n3=0x2001\n", { 0x2000, 0x2001 },
        { "list-number: 2" });
    const QByteArray array = manufacturer + "1\n1=0x2000\n[2000]\nParameterName=V\nObjectType=8\nSubNumber=";
    const QByteArray entry = "\n[2000sub1]\nParameterName=V\nDataType=5\nAccessType=ro\n";
    add("sub-index 0 is missing", array + "2" + entry, {}, { "missing-sub-index-0: [2000sub0]" });
    add("sub-index 0 and its count are missing", array + "1" + entry, {},
        { "missing-sub-index-0: [2000sub0] (then SubNumber=2)" });
    add("sub-index 0 is missing and the count is another", array + "5" + entry, {},
        { "missing-sub-index-0: [2000sub0]", "sub-count: SubNumber=2, or the sections that are missing" });
}

void TestSheetMends::mendsOfListsFitTogether()
{
    QFETCH(const QByteArray, sheet);
    QFETCH(const QStringList, mends);
    QCOMPARE(mendsOf(sheet), mends);
}

void TestSheetMends::otherCharacterSetIsTheReason_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("name");
    for (const char* text : { "[FileInfo]\nFileName=x\n", "; a comment\r\n[FileInfo]\r\nFileName=x\r\n" })
        for (const bool bigFirst : { false, true })
            for (const bool isMarked : { false, true }) {
                const char* const order = bigFirst ? "big" : "little";
                QTest::addRow("%.4s in UTF-16, %s end first, marked %d", text, order, isMarked)
                    << encoded(text, 2, bigFirst, isMarked) << "UTF-16";
                if (isMarked)
                    QTest::addRow("%.4s in UTF-32, %s end first", text, order)
                        << encoded(text, 4, bigFirst, true) << "UTF-32";
            }
}

void TestSheetMends::otherCharacterSetIsTheReason()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, name);
    const CSheetFile file(bytes);
    const tCheckResult result = checkSheet(file.name(), allRules());
    QVERIFY(!result.isLoaded);
    QCOMPARE(result.findings.size(), 1U);
    const tFinding& finding = result.findings.front();
    QCOMPARE(finding.rule, ruleSyntax);
    QVERIFY2(result.verdict.contains(QString(", line %1: ").arg(finding.place.line)), qPrintable(result.verdict));
    QCOMPARE(finding.advice.text, "the file is " + name + ", but the browser reads UTF-8 and Windows-1252 only");
    QCOMPARE(finding.advice.mend, "save the file as UTF-8");
}

void TestSheetMends::carriageReturnIsTheReason()
{
    const QString reason = "a carriage return (CR) alone ends no line for the browser";
    for (const QByteArray sheet :
         { "[FileInfo]\rFileName=x\r", "; comment\r[FileInfo]\rFileName=x\r", "[FileInfo]\r\r\nFileName=x\r\r\n" }) {
        const CSheetFile file(sheet);
        const tCheckResult result = checkSheet(file.name(), tRuleSet().set(ruleSyntax).set(ruleLineEnds));
        QCOMPARE(result.findings.size(), 1U);
        QCOMPARE(result.findings.front().advice.text, reason);
        QCOMPARE(result.findings.front().advice.mend, "save the file with LF or CR LF at the ends of lines");
    }
}

void TestSheetMends::whatTheBrowserDoesNotReadIsNotTakenAs0()
{
    const auto textOf = [](const QByteArray& lines) {
        const CSheetFile file(lines, "device.dcf");
        const auto findings = checkSheet(file.name(), tRuleSet().set(ruleNotANumber)).findings;
        return findings.size() == 1 ? findings.front().advice.text : QString();
    };
    QCOMPARE(textOf("[DeviceInfo]\nLSS_Supported=Yes\n"), "this is no number, and the browser takes it as 0");
    QCOMPARE(textOf("[DeviceInfo]\nNG_Slave=Yes\n"), "this is no number");
    QCOMPARE(textOf("[DeviceComissioning]\nBaudrate=fast\n"), "this is no number"); // sic
    QCOMPARE(textOf("[DummyUsage]\nDummy0005=0x10000\n"), "the number is too large");
    QCOMPARE(textOf("[OptionalObjects]\n1=none\n"), "this is no number, and the browser takes it as 0");
    QCOMPARE(textOf("[OptionalObjects]\n1=0\n"), "no object has the index 0");
}

void TestSheetMends::sectionThatIsThereTwiceIsTold()
{
    const CSheetFile file("[DeviceInfo]\nVendorName=x\n[FileInfo]\nFileName=x\n[DeviceInfo]\nVendorName=y\n");
    const auto findings = checkSheet(file.name(), tRuleSet().set(ruleDuplicateSection)).findings;
    QCOMPARE(findings.size(), 1U);
    QCOMPARE(findings.front().place.line, 5);
    QCOMPARE(findings.front().advice.text, "[DeviceInfo] is there twice");
}

void TestSheetMends::gapsOfPdosAreExplained()
{
    const auto mapped = [](const QByteArray& target) {
        const CSheetFile file("[1600]\nParameterName=M\nObjectType=9\nSubNumber=2\n"
                              "[1600sub0]\nParameterName=N\nDataType=5\nAccessType=rw\nDefaultValue=1\n"
                              "[1600sub1]\nParameterName=P\nDataType=7\nAccessType=rw\nDefaultValue=" +
                              target + "\n[DummyUsage]\nDummy0001=1\n");
        return checkSheet(file.name(), tRuleSet().set(ruleNotMappable).set(ruleMappingLength)).findings;
    };
    QVERIFY(mapped("0x00010001").empty()); // a BOOLEAN has one bit
    const auto findings = mapped("0x00060010");
    QCOMPARE(findings.size(), 1U);
    QCOMPARE(findings.front().advice.text, "only a receive PDO has gaps, and only of types that [DummyUsage] allows");
    QCOMPARE(findings.front().advice.mend, "Dummy0006=1 in [DummyUsage]");
}

void TestSheetMends::countInAnotherCaseListsAnObject()
{
    const CSheetFile file("[ManufacturerObjects]\nsupportedobjects=2\n1=0x2000\n2=0x2001\n");
    const tCheckResult result = checkSheet(file.name(), tRuleSet().set(ruleSpelling).set(ruleMissingObject));
    QVERIFY(result.verdict.startsWith("loads, 3 objects"));
    QCOMPARE(findingLines(result),
             QStringList({ "2:1 spelling", "2:18 missing-object", "3:3 missing-object", "4:3 missing-object" }));
    QCOMPARE(result.findings.front().advice.text,
             "the browser lists an object of this number: it tells upper from lower case");
}

void TestSheetMends::verdictTellsObjectsWithoutEntries()
{
    const auto verdictOf = [](const QByteArray& sheet) {
        return checkSheet(CSheetFile(sheet).name(), tRuleSet()).verdict;
    };
    const QByteArray list = "[ManufacturerObjects]\n1=0x2000\n";
    QCOMPARE(verdictOf(sheetWithLists(list, { 0x2000 })), "loads, 1 object");
    QCOMPARE(verdictOf(list), "loads, 1 object, 1 of them without entries");
    QCOMPARE(verdictOf(sheetWithLists(list + "2=0x2001\n", { 0x2001 })), "loads, 2 objects, 1 of them without entries");
}

// A PDO with three parameters of 32 bits each, by default and as configured.
void TestSheetMends::mappedBitsAreThoseThatCount_data()
{
    QTest::addColumn<QByteArray>("count");
    QTest::addColumn<QByteArray>("third");
    QTest::addColumn<QStringList>("expected");
    const QByteArray mapped = "DefaultValue=0x20000020\n";
    const auto add = [](const char* name, const QByteArray& count, const QByteArray& third,
                        const QStringList& expected) { QTest::newRow(name) << count << third << expected; };
    add("all", "DefaultValue=3\n", mapped, { "25:14 pdo-length" });
    add("the count is not known", "", mapped, { "24:14 pdo-length" });
    add("two of them", "DefaultValue=2\n", mapped, {});
    add("none", "DefaultValue=0\n", mapped, {});
    add("multiplexed", "DefaultValue=0xFE\n", mapped, {});
    add("three in the configuration", "DefaultValue=0\nParameterValue=3\n", mapped, { "26:14 pdo-length" });
    add("two in the configuration", "DefaultValue=3\nParameterValue=2\n", mapped, { "26:14 pdo-length" });
    add("another one in the configuration", "DefaultValue=3\n", "DefaultValue=0\nParameterValue=0x20000020\n",
        { "26:16 pdo-length" });
    add("a third one not in the configuration", "DefaultValue=3\n", mapped + "ParameterValue=0\n",
        { "25:14 pdo-length" });
    add("the same in the configuration", "DefaultValue=3\n", mapped + "ParameterValue=536870944\n",
        { "25:14 pdo-length" });
}

void TestSheetMends::mappedBitsAreThoseThatCount()
{
    QFETCH(const QByteArray, count);
    QFETCH(const QByteArray, third);
    QFETCH(const QStringList, expected);
    const auto entry = [](const char* name, const QByteArray& lines) {
        return "[1600sub" + QByteArray(name) + "]\nParameterName=P\nDataType=7\nAccessType=rw\n" + lines;
    };
    const QByteArray mapped = "DefaultValue=0x20000020\n";
    const CSheetFile file("[OptionalObjects]\n1=0x1600\n[1600]\nParameterName=M\nObjectType=9\n" + entry("0", count) +
                              entry("1", mapped) + entry("2", mapped) + entry("3", third),
                          "device.dcf");
    QCOMPARE(findingLines(checkSheet(file.name(), tRuleSet().set(rulePdoLength))), expected);
}

void TestSheetMends::entriesBeforeTheirListAreTold()
{
    const QByteArray entry = "ParameterName=V\nDataType=5\nAccessType=ro\n";
    const CSheetFile file("[2000sub0]\n" + entry + "[2000sub1]\n" + entry +
                          "[ManufacturerObjects]\n1=0x2000\n1=0x2000\n");
    QCOMPARE(findingLines(checkSheet(file.name(), tRuleSet().set(ruleLateList))), QStringList("1:2 late-list"));
}

void TestSheetMends::objectOfAnOddLineIsListed()
{
    const CSheetFile file(sheetWithLists("[ManufacturerObjects]\nObject1=0x2000\n", { 0x2000 }));
    const tCheckResult result = checkSheet(file.name(), tRuleSet().set(ruleUnknownKey).set(ruleUnlistedObject));
    QCOMPARE(result.verdict, "loads, 1 object");
    QCOMPARE(findingLines(result), QStringList("2:1 unknown-key"));
}

QTEST_APPLESS_MAIN(TestSheetMends)
#include "TestSheetMends.moc"
