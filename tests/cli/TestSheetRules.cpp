// Each rule of the check: a sheet that breaks it and nothing else, and the same sheet mended.
// SPDX-License-Identifier: MIT
#include "FindingLines.h"
#include "SheetFile.h"

#include <QDir>
#include <QTest>

static QString dataOf(const QString& file)
{
    return VELMORA_TEST_DATA "/check/" + file;
}

static QString nameOfRule(tRule rule)
{
    const auto name = rowOf(rule).name;
    return QString::fromLatin1(name.data(), qsizetype(name.size()));
}

// The sheet that breaks a rule, or the mended one. What belongs to a configuration is allowed in one only.
static QString sheetOf(const QString& rule, bool isMended)
{
    const bool isDcf = rule == "node-id" || (rule == "dcf-in-eds" && isMended);
    return rule + (isMended ? "-mended" : "") + (isDcf ? ".dcf" : ".eds");
}

struct tBrokenRule {
    tRule rule;
    const char* place; // in its sheet
};

static const tBrokenRule brokenRules[] = {
    { ruleSyntax, "68:1" },
    { ruleNoObjects, "1:1" },
    { ruleIgnoredSection, "61:2" },
    { ruleUnknownSection, "71:2" },
    { ruleEmptySection, "72:2" },
    { ruleMissingSection, "1:1" },
    { ruleDuplicateSection, "71:2" },
    { ruleDuplicateIndex, "24:3" },
    { ruleMissingObject, "24:3" },
    { ruleUnlistedObject, "71:2" },
    { ruleLateList, "57:2" },
    { ruleMissingMandatory, "15:2" },
    { ruleWrongList, "23:3" },
    { ruleListNumber, "19:1" },
    { ruleUnknownKey, "68:1" },
    { ruleSpelling, "12:1" },
    { ruleDuplicateKey, "69:1" },
    { ruleMissingKey, "61:2" },
    { ruleKeyOrder, "63:10" },
    { ruleDcfInEds, "70:1" },
    { ruleNotANumber, "11:14" },
    { ruleNodeId, "72:8" },
    { ruleUnknownType, "64:10" },
    { ruleUnknownAccess, "65:12" },
    { ruleUnknownObjectType, "63:12" },
    { ruleCount, "16:18" },
    { ruleSubCount, "43:11" },
    { ruleMissingSub0, "40:2" },
    { ruleHighestSub, "50:14" },
    { rulePdoCount, "13:11" },
    { ruleSubOfVariable, "71:2" },
    { ruleValueType, "69:11" },
    { ruleLimits, "66:14" },
    { ruleMappingMissing, "93:14" },
    { ruleNotMappable, "93:14" },
    { ruleMappingLength, "93:14" },
    { rulePdoLength, "157:14" },
    { ruleMissingObjectType, "61:2" },
    { ruleCompactSubObj, "66:15" },
    { ruleModules, "81:2" },
    { ruleLineEnds, "68:20" },
    { ruleFileInfoOrder, "65:2" },
};

class TestSheetRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sheetOfTheRuleHasThisFindingOnly_data() { addRules(); }
    void sheetOfTheRuleHasThisFindingOnly();
    void mendedSheetHasNoFinding_data() { addRules(); }
    void mendedSheetHasNoFinding();
    void ruleThatIsOffFindsNothing_data() { addRules(); }
    void ruleThatIsOffFindsNothing();
    void everyRuleHasItsSheets();
    void everyRuleIsFoundByItsName();
    void linesOfASheetGiveTheseFindings_data();
    void linesOfASheetGiveTheseFindings();
    void sheetsOfTheProductAreClean();

private:
    static void addRules()
    {
        QTest::addColumn<QString>("expected");
        for (const tBrokenRule& row : brokenRules)
            QTest::newRow(qPrintable(nameOfRule(row.rule))) << row.place + (' ' + nameOfRule(row.rule));
    }
};

void TestSheetRules::sheetOfTheRuleHasThisFindingOnly()
{
    QFETCH(QString, expected);
    const tCheckResult result = checkSheet(dataOf(sheetOf(QTest::currentDataTag(), false)), allRules());
    QVERIFY(result.isRead);
    QCOMPARE(findingLines(result), QStringList(expected));
    QVERIFY(!result.findings.front().advice.text.isEmpty());
}

void TestSheetRules::mendedSheetHasNoFinding()
{
    const tCheckResult result = checkSheet(dataOf(sheetOf(QTest::currentDataTag(), true)), allRules());
    QVERIFY(result.isLoaded);
    QCOMPARE(findingLines(result), QStringList());
}

void TestSheetRules::ruleThatIsOffFindsNothing()
{
    const auto rule = ruleByName(QTest::currentDataTag());
    QVERIFY(rule);
    const QString sheet = dataOf(sheetOf(QTest::currentDataTag(), false));
    QCOMPARE(findingLines(checkSheet(sheet, allRules().reset(*rule))), QStringList());
    QCOMPARE(findingLines(checkSheet(sheet, tRuleSet().set(*rule))).size(), 1);
}

void TestSheetRules::everyRuleHasItsSheets()
{
    QStringList expected;
    for (const tRuleRow& row : sheetRules()) {
        const QString name = nameOfRule(row.rule);
        expected << sheetOf(name, false) << sheetOf(name, true);
        QCOMPARE(int(brokenRules[row.rule].rule), int(row.rule));
    }
    expected.sort();
    QStringList found = QDir(dataOf("")).entryList({ "*.eds", "*.dcf" }, QDir::Files);
    found.sort();
    QCOMPARE(found, expected);
}

void TestSheetRules::everyRuleIsFoundByItsName()
{
    for (const tRuleRow& row : sheetRules()) {
        QCOMPARE(ruleByName(row.name), std::optional(row.rule));
        QVERIFY(!row.description.empty() && row.description.size() < 100);
    }
    QVERIFY(!ruleByName("no-such-rule") && !ruleByName(""));
}

// The object of a row begins in line 3, since the sheet lists it in line 2. Rules of what all sheets need are off.
void TestSheetRules::linesOfASheetGiveTheseFindings_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QStringList>("expected");
    const QByteArray variable = "[2000]\nParameterName=V\nObjectType=7\nAccessType=rw\n"; // lines 3 to 6
    const auto add = [](const char* name, const QByteArray& lines, const QStringList& expected) {
        QTest::newRow(name) << lines << expected;
    };
    const auto value = [&](const char* type, const char* values, const QStringList& expected) {
        QTest::addRow("%s: %s", type, QByteArray(values).replace('\n', ' ').constData())
            << variable + "DataType=" + type + '\n' + values + '\n'
            << expected;
    };
    add("clean", variable + "DataType=5\n", {});

    // Types: 1 Boolean, 2 Integer8, 5 Unsigned8, 6 Unsigned16, 8 Real32, 9 text, 0xA octets, 0x15 Integer64,
    // 0x1B Unsigned64.
    value("1", "DefaultValue=1", {});
    value("1", "DefaultValue=2", { "8:14 value-type" });
    value("1", "DefaultValue=true", { "8:14 value-type" });
    value("2", "LowLimit=0x80\nHighLimit=127\nDefaultValue=-1", {});
    value("2", "LowLimit=0\nHighLimit=0xFF", { "9:11 limits" });
    value("2", "DefaultValue=128", { "8:14 value-type" });
    value("2", "DefaultValue=-0", {});
    value("2", "LowLimit=-128\nHighLimit=-1\nDefaultValue=0xFF", {});
    value("2", "DefaultValue=-010", {});
    value("2", "DefaultValue=-0x1", { "8:14 value-type" });
    value("2", "DefaultValue=-", { "8:14 value-type" });
    value("2", "DefaultValue=-129", { "8:14 value-type" });
    value("2", "LowLimit=-5\nDefaultValue=0xFA", { "9:14 limits" });
    value("5", "DefaultValue=-1", { "8:14 value-type" });
    value("5", "DefaultValue=0x100", { "8:14 value-type" });
    value("5", "DefaultValue=0x", { "8:14 value-type" });
    value("5", "DefaultValue=08", { "8:14 value-type" });
    value("5", "DefaultValue=017", {});
    value("5", "DefaultValue=$NODEID+0x80", {});
    value("5", "DefaultValue=0x81+$nodeid", { "8:14 value-type" });
    value("5", "DefaultValue=$NODE", { "8:14 value-type" });
    value("5", "LowLimit=3\nDefaultValue=$NODEID", {});
    value("5", "DefaultValue=5 ; five", {});
    value("5", "DefaultValue=", {});
    value("6", "LowLimit=2\nHighLimit=1\nDefaultValue=5", { "9:11 limits" });
    value("6", "LowLimit=2\nHighLimit=4\nDefaultValue=1", { "10:14 limits" });
    value("6", "LowLimit=2\nHighLimit=4\nDefaultValue=5", { "10:14 limits" });
    value("6", "HighLimit=4\nDefaultValue=5\nParameterValue=0x5", { "9:14 limits", "10:1 dcf-in-eds" });
    value("6", "HighLimit=4\nDefaultValue=5\nParameterValue=6", { "9:14 limits", "10:1 dcf-in-eds", "10:16 limits" });
    value("8", "LowLimit=-1.5\nHighLimit=1e3\nDefaultValue=0.5", {});
    value("8", "DefaultValue=0x3F800000", {});
    value("8", "DefaultValue=1,5", { "8:14 value-type" });
    value("8", "LowLimit=0.5\nDefaultValue=0.25", { "9:14 limits" });
    value("9", "DefaultValue=Yes\nLowLimit=x", {});
    value("9", "DefaultValue=\xC3\xA4", {});
    value("9", "DefaultValue=\xE2\x82\xAC", { "8:14 value-type" });
    value("9", "ParameterValue=\xCE\xA9", { "8:1 dcf-in-eds", "8:16 value-type" });
    value("0xA", "DefaultValue=00 01", {});
    value("0xA", "DefaultValue=text", {});
    value("0xB", "DefaultValue=now", { "8:14 value-type" });
    value("0xB", "DefaultValue=00 00 00 00 00 00 00", {});
    value("0xC", "DefaultValue=2026-01-31 12:00:00.000", {});
    value("0xC", "DefaultValue=0", { "8:14 value-type" });
    value("0xC", "DefaultValue=00 00 00 00 00 00", {});
    value("0xD", "DefaultValue=00 00 00 00 00", { "8:14 value-type" });
    value("0x15", "LowLimit=0xFFFFFFFFFFFFFFF6\nHighLimit=0xA\nDefaultValue=-10", {});
    value("0x15", "LowLimit=0xFFFFFFFFFFFFFFF6\nDefaultValue=-11", { "9:14 limits" });
    value("0x1B", "HighLimit=0xFFFFFFFFFFFFFFFF\nDefaultValue=18446744073709551615", {});
    value("0x1B", "DefaultValue=0x10000000000000000", { "8:14 value-type" });
    value("0x40", "LowLimit=3\nHighLimit=1", {});

    for (const char* type : { "0", "0xE", "0x17", "0x1C", "0x26", "0x3F", "0x260", "0xFFFF" })
        value(type, "", { "7:10 unknown-type" });
    for (const char* type : { "0x16", "0x20", "0x23", "0x60", "0x25F" })
        value(type, "", {});
    value("Unsigned8", "", { "7:10 not-a-number" });
    value("0x10000", "", { "7:10 not-a-number" });
    value("5", "PDOMapping=No", { "8:12 not-a-number" });
    value("5", "ObjFlags=0x1FFFFFFFF", { "8:10 not-a-number" });
    value("5", "UploadFile=a\nDownloadFile=b", { "8:1 dcf-in-eds", "9:1 dcf-in-eds" });
    value("5", "Pdomapping=1", { "8:1 spelling" });
    value("5", "compactsubobj=0", {});

    add("name after the object type", "[2000]\nObjectType=7\nParameterName=V\nAccessType=rw\nDataType=5\n",
        { "5:15 key-order" });
    add("array without entries", "[2000]\nParameterName=V\nObjectType=8\nDataType=5\nAccessType=rw\n",
        { "3:2 missing-key" });
    add("announced entries", "[2000]\nParameterName=V\nObjectType=8\nSubNumber=3\n",
        { "3:2 missing-sub-index-0", "6:11 sub-count" });
    add("no entries announced", "[2000]\nParameterName=V\nObjectType=8\nSubNumber=0\n", { "3:2 missing-sub-index-0" });
    add("sub-index 0 announced, but missing",
        "[2000]\nParameterName=V\nObjectType=8\nSubNumber=2\n[2000sub1]\nParameterName=V\nDataType=5\nAccessType=ro\n",
        { "3:2 missing-sub-index-0" });
    add("domain", "[2000]\nParameterName=V\nObjectType=2\n", {});
    add("structure",
        "[2000]\nParameterName=V\nObjectType=6\nSubNumber=1\n[2000sub0]\nParameterName=V\nObjectType=7\n"
        "DataType=5\nAccessType=ro\nDefaultValue=0\n",
        {});
    add("entry 255",
        "[2000]\nParameterName=V\nObjectType=9\nSubNumber=2\n"
        "[2000sub0]\nParameterName=V\nDataType=5\nAccessType=ro\nDefaultValue=0\n"
        "[2000subFF]\nParameterName=V\nDataType=7\nAccessType=ro\n",
        {});
    add("entries only", "[2000sub0]\nParameterName=V\nDataType=5\nAccessType=ro\n", { "2:3 missing-object" });
    add("object twice", variable + "DataType=5\n" + variable + "DataType=5\n", { "8:2 duplicate-section" });
    add("sub-index with a zero",
        "[2000]\nParameterName=V\nObjectType=9\nSubNumber=1\n"
        "[2000sub00]\nParameterName=V\nDataType=5\nAccessType=ro\n",
        { "7:2 ignored-section" });
    add("index as a number", "[0x2000]\nParameterName=V\nObjectType=7\nAccessType=rw\nDataType=5\n",
        { "3:2 ignored-section" });
    add("blanks in brackets", "[ 2000 ]\nParameterName=V\nObjectType=7\nAccessType=rw\nDataType=5\n", { "3:2 syntax" });
    add("section in another case",
        variable + "DataType=5\n[deviceinfo]\nVendorName=x\nVendorNumber=0\n"
                   "ProductName=x\nNrOfRXPDO=0\nNrOfTXPDO=0\n",
        { "8:2 spelling" });
    add("unread section in another case", variable + "DataType=5\n[comments]\nLines=0\n", {});
    add("section of no number", variable + "DataType=5\n[2000sub100]\nx=1\n", { "8:2 unknown-section" });
    add("names of a compact object",
        "[2000]\nParameterName=V\nObjectType=8\nDataType=5\nAccessType=rw\n"
        "CompactSubObj=9\n[2000Name]\nNrOfEntries=2\n3=c\n1=a\n",
        { "8:15 compact-sub-obj" });
    add("too few names",
        "[2000]\nParameterName=V\nObjectType=8\nDataType=5\nAccessType=rw\n"
        "CompactSubObj=9\n[2000Name]\nNrOfEntries=2\n1=a\n",
        { "8:15 compact-sub-obj", "10:13 count" });
    add("compact variable", variable + "DataType=5\nCompactSubObj=2\n", { "8:15 compact-sub-obj" });
    add("object type without a value", "[2000]\nParameterName=V\nObjectType=\nAccessType=rw\nDataType=5\n", {});
    for (const char* lines : { "", "SubNumber=0\n", "SubNumber=2\n" })
        QTest::addRow("no object type, %s", QByteArray(lines).trimmed().constData())
            << "[2000]\nParameterName=V\nAccessType=rw\nDataType=5\n" + QByteArray(lines)
            << QStringList("3:2 missing-object-type");
    add("no object type, but entries",
        "[2000]\nParameterName=V\nAccessType=rw\nDataType=5\nSubNumber=1\n"
        "[2000sub0]\nParameterName=V\nDataType=5\nAccessType=ro\nDefaultValue=0\n",
        { "8:2 sub-of-variable" });
    add("object type that is none", "[2000]\nParameterName=V\nObjectType=VAR\nAccessType=rw\nDataType=5\n",
        { "5:12 not-a-number" });
    add("module",
        variable + "DataType=5\n[M1ModuleInfo]\nProductName=x\n[M1Comments]\nLines=0\n[m1fixed6000]\n"
                   "x=1\n[M1SubExtends]\nNrOfEntries=0\n[M1SubExt6000]\nx=1\n",
        { "12:2 modules" });
    add("denotations", variable + "DataType=5\n[2000Denotation]\nNrOfEntries=0\n", { "8:2 dcf-in-eds" });
    add("word in a list", variable + "DataType=5\n[OptionalObjects]\nSupportedObjects=1\n1=none\n",
        { "10:3 not-a-number" });
    add("name in a list", variable + "DataType=5\n[OptionalObjects]\nSupportedObject=0\n",
        { "8:2 missing-key", "9:1 unknown-key" });
    add("number of a list twice", variable + "DataType=5\n[Comments]\nLines=1\nLine1=a\nLine1=b\n",
        { "11:1 duplicate-key" });
    add("dummies", variable + "DataType=5\n[DummyUsage]\nDummy0001=x\nDummy1=0\nDumy=1\n",
        { "9:11 not-a-number", "10:1 duplicate-key", "11:1 unknown-key" });
    add("key of a broken line", variable + "DataType = 5\n", { "7:9 syntax" });
    add("key without a section", variable + "DataType=5\n[FileInfo\nFileName=x\n", { "8:10 syntax" });

    // A PDO that maps 2000 in line 17: [1600] is line 9 to 12, [1600sub1] 13 to 17.
    const auto mapping = [&](const char* pdo, const char* target, const char* access, const QStringList& expected) {
        const QByteArray index(pdo);
        QTest::addRow("%s maps %s, which is %s", pdo, target, access)
            << "[2000]\nParameterName=V\nObjectType=7\nAccessType=" + QByteArray(access) +
                   "\nDataType=6\nPDOMapping=1\n[" + index + "]\nParameterName=M\nObjectType=9\nSubNumber=2\n[" +
                   index + "sub1]\nParameterName=P\nDataType=7\nAccessType=rw\nDefaultValue=" + target + "\n[" + index +
                   "sub0]\nParameterName=N\nDataType=5\nAccessType=rw\nDefaultValue=1\n["
                   "DummyUsage]\nDummy0005=1\nDummy0006=0\n"
            << expected;
    };
    mapping("1600", "0x20000010", "rw", {});
    mapping("1600", "0x20000010", "rww", {});
    mapping("1600", "0x20000010", "wo", {});
    mapping("1600", "0x20000010", "rwr", { "17:14 not-mappable" });
    mapping("1600", "0x20000010", "ro", { "17:14 not-mappable" });
    mapping("17FF", "0x20000010", "const", { "17:14 not-mappable" });
    mapping("1A00", "0x20000010", "rw", {});
    mapping("1A00", "0x20000010", "rwr", {});
    mapping("1A00", "0x20000010", "ro", {});
    mapping("1A00", "0x20000010", "const", {});
    mapping("1A00", "0x20000010", "rww", { "17:14 not-mappable" });
    mapping("1BFF", "0x20000010", "wo", { "17:14 not-mappable" });
    mapping("1600", "0x20000110", "rw", { "17:14 mapping-missing" });
    mapping("1600", "0x20000000", "rw", { "17:14 mapping-length" });
    mapping("1600", "0", "ro", {});
    mapping("1600", "0x00050008", "ro", {});
    mapping("1600", "0x00060010", "ro", { "17:14 not-mappable" });
    mapping("1A00", "0x00050008", "ro", { "17:14 not-mappable" });
    mapping("1400", "0x20010010", "ro", {});
}

void TestSheetRules::linesOfASheetGiveTheseFindings()
{
    QFETCH(QByteArray, lines);
    QFETCH(QStringList, expected);
    tRuleSet rules = allRules();
    for (const tRule rule : { ruleMissingSection, ruleMissingMandatory, ruleUnlistedObject })
        rules.reset(rule);
    const CSheetFile file("[ManufacturerObjects]\n1=0x2000\n" + lines);
    QStringList found = findingLines(checkSheet(file.name(), rules));
    found.removeOne("1:2 missing-key"); // of the list, whose lines are two for simplicity
    QCOMPARE(found, expected);
}

void TestSheetRules::sheetsOfTheProductAreClean()
{
    const QFileInfoList sheets = QDir(VELMORA_SHARE).entryInfoList({ "*.eds", "*.dcf" });
    QVERIFY(!sheets.isEmpty());
    for (const QFileInfo& sheet : sheets)
        QCOMPARE(findingLines(checkSheet(sheet.filePath(), allRules())), QStringList());
}

QTEST_APPLESS_MAIN(TestSheetRules)
#include "TestSheetRules.moc"
