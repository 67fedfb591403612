// The INI tokenizer: lines as a stream of items, the grammar line by line, line numbers.
// SPDX-License-Identifier: MIT
#include "dic/IniReader.h"

#include "Items.h"
#include "RowName.h"

#include <QTest>

// A row named by the line; it stands as the second line of section [a].
static void lineRow(const char* line, const char* item)
{
    QTest::newRow(rowName(line)) << QByteArray("[a]\n") + line + '\n' << QStringList{ item, "-1" };
}

static void refusedRow(const char* line)
{
    QTest::newRow(rowName(line)) << QByteArray("[a]\n") + line + "\nk=1\n" << QStringList{ "0 in line 2" };
}

class TestIniReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineNumberIsMinusOneBeforeAnyFile(); // stays the first test: the counter lives as long as the program
    void readerWithoutFileIsAtTheEnd();
    void missingFileIsAtTheEndAndKeepsTheLineNumber();
    void openedFileSetsTheLineNumberToZero();
    void lineNumberIsThatOfTheLineReached();
    void errorInTheFifthLineIsReportedThere();
    void endOfFileIsReportedAgainAndAgain();
    void headerIsDeliveredWithItsFirstKey();
    void headerWithoutKeysIsNotDelivered();
    void sameHeaderAgainIsANewSection();
    void headerClearsKeyAndValue();
    void refusedLineClearsTheValue_data();
    void refusedLineClearsTheValue();
    void skippedLinesKeepTheItem();
    void keyBeforeAnySectionIsAnError() { QCOMPARE(items(";\nk=1\n[a]\n"), QStringList{ "0 in line 2" }); }
    void filesWithoutItemsEndAtOnce_data();
    void filesWithoutItemsEndAtOnce() { compareItems(); }
    void lineEndings_data();
    void lineEndings() { compareItems(); }
    void skippedLines_data();
    void skippedLines() { compareItems(); }
    void sectionHeaders_data();
    void sectionHeaders() { compareItems(); }
    void brokenSectionHeaders_data();
    void brokenSectionHeaders() { compareItems(); }
    void deeplyNestedBracketsAreAnError();
    void keyLines_data();
    void keyLines() { compareItems(); }
    void lettersAndDigitsOfAllLanguagesMakeKeys();
    void brokenKeyLines_data();
    void brokenKeyLines() { compareItems(); }
    void textAfterLeadingBlanksIsAnError_data();
    void textAfterLeadingBlanksIsAnError() { compareItems(); }
    void zeroBytes_data();
    void zeroBytes() { compareItems(); }
    void lineNumbersReachFar();
    void versionIsARevision() { QCOMPARE(QByteArray(CIniReader::version()), QByteArray("$Rev: 1 $")); }
};

void TestIniReader::lineNumberIsMinusOneBeforeAnyFile()
{
    QCOMPARE(CIniReader().getLineOfError(), -1);
}

void TestIniReader::readerWithoutFileIsAtTheEnd()
{
    CIniReader reader;
    QCOMPARE(reader.moveToNextItem(), -1);
    QCOMPARE(reader.moveToNextItem(), -1);
    QCOMPARE(reader.getLineOfError(), -1);
}

void TestIniReader::missingFileIsAtTheEndAndKeepsTheLineNumber()
{
    QCOMPARE(items("[a]\nk=1\n?"), (QStringList{ "1 a k=1", "0 in line 3" }));
    CIniReader reader(QFile::encodeName(QTemporaryDir().filePath("missing.eds")));
    QCOMPARE(reader.moveToNextItem(), -1);
    QCOMPARE(reader.getLineOfError(), 3);
}

void TestIniReader::openedFileSetsTheLineNumberToZero()
{
    items("[a]\n\n?");
    const CSheetFile file("[a]\nk=1\n");
    const CIniReader reader(file.name());
    QCOMPARE(reader.getLineOfError(), 0);
}

void TestIniReader::lineNumberIsThatOfTheLineReached()
{
    const CSheetFile file("; comment\r\n\r\n[a]\r\n  \r\nk=1\r\nl=2");
    CIniReader reader(file.name());
    QCOMPARE(reader.moveToNextItem(), 1);
    QCOMPARE(reader.getLineOfError(), 5);
    QCOMPARE(reader.moveToNextItem(), 2);
    QCOMPARE(reader.getLineOfError(), 6);
    QCOMPARE(reader.moveToNextItem(), -1);
    QCOMPARE(reader.getLineOfError(), 6);
}

void TestIniReader::errorInTheFifthLineIsReportedThere()
{
    QCOMPARE(items("[a]\nk=1\n;\n\nk 2\n"), (QStringList{ "1 a k=1", "0 in line 5" }));
}

void TestIniReader::endOfFileIsReportedAgainAndAgain()
{
    const CSheetFile file("[a]\nk=1\n[b]\n");
    CIniReader reader(file.name());
    QCOMPARE(reader.moveToNextItem(), 1);
    for (int time = 0; time < 3; ++time)
        QCOMPARE(reader.moveToNextItem(), -1);
}

void TestIniReader::headerIsDeliveredWithItsFirstKey()
{
    QCOMPARE(items("[DeviceInfo]\nVendorName=ACME ; maker\nProductName=Valve\n"),
             (QStringList{ "1 DeviceInfo VendorName=ACME", "2 DeviceInfo ProductName=Valve", "-1" }));
}

void TestIniReader::headerWithoutKeysIsNotDelivered()
{
    QCOMPARE(items("[a]\n[b]\nk=1\n[c]\n"), (QStringList{ "1 b k=1", "-1" }));
}

void TestIniReader::sameHeaderAgainIsANewSection()
{
    QCOMPARE(items("[a]\nk=1\n[a]\nk=2\nl=3\n"), (QStringList{ "1 a k=1", "1 a k=2", "2 a l=3", "-1" }));
}

void TestIniReader::headerClearsKeyAndValue()
{
    for (const char* end : { "", "\n;\n" }) {
        const CSheetFile file(QByteArray("[a]\nk=v\n[b]") + end);
        CIniReader reader(file.name());
        QCOMPARE(reader.moveToNextItem(), 1);
        QCOMPARE(reader.getKeyValue(), QString("v"));
        QCOMPARE(reader.moveToNextItem(), -1);
        QCOMPARE(reader.getSection(), QString("b"));
        QCOMPARE(reader.getKeyName(), QString(""));
        QCOMPARE(reader.getKeyValue(), QString(""));
    }
}

void TestIniReader::refusedLineClearsTheValue_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::newRow("[b c]") << "b"
                           << "";
    QTest::newRow("[") << ""
                       << "";
    QTest::newRow("[b] c") << "b"
                           << "";
    QTest::newRow("l-=2") << "a"
                          << "l";
    QTest::newRow("l 2") << "a"
                         << "l";
    QTest::newRow("=2") << "a"
                        << "";
}

void TestIniReader::refusedLineClearsTheValue()
{
    const CSheetFile file(QByteArray("[a]\nk=v\n") + QTest::currentDataTag() + '\n');
    CIniReader reader(file.name());
    QCOMPARE(reader.moveToNextItem(), 1);
    QCOMPARE(reader.moveToNextItem(), 0);
    QTEST(reader.getSection(), "section");
    QTEST(reader.getKeyName(), "key");
    QCOMPARE(reader.getKeyValue(), QString(""));
}

void TestIniReader::skippedLinesKeepTheItem()
{
    const CSheetFile file("[a]\nk=v\n;\n\n \t\n");
    CIniReader reader(file.name());
    QCOMPARE(reader.moveToNextItem(), 1);
    QCOMPARE(reader.moveToNextItem(), -1);
    QCOMPARE(reader.getSection(), QString("a"));
    QCOMPARE(reader.getKeyName(), QString("k"));
    QCOMPARE(reader.getKeyValue(), QString("v"));
}

void TestIniReader::filesWithoutItemsEndAtOnce_data()
{
    columns();
    for (const char* text : { "", "\n", "\r\n", "\r", "\n\n\n", "   ", "\t", ";", "; text", " ; text", "[a]", "[a]\n" })
        QTest::newRow(rowName(text)) << QByteArray(text) << QStringList{ "-1" };
}

void TestIniReader::lineEndings_data()
{
    columns();
    const QStringList both = { "1 a k=1", "2 a l=2", "-1" };
    QTest::newRow("line feeds") << QByteArray("[a]\nk=1\nl=2\n") << both;
    QTest::newRow("carriage returns and line feeds") << QByteArray("[a]\r\nk=1\r\nl=2\r\n") << both;
    QTest::newRow("mixed") << QByteArray("[a]\r\nk=1\nl=2\r\n") << both;
    QTest::newRow("none at the end") << QByteArray("[a]\nk=1\nl=2") << both;
    QTest::newRow("carriage return alone at the end") << QByteArray("[a]\nk=1\nl=2\n[b]\r") << both;
    QTest::newRow("two carriage returns") << QByteArray("[a]\r\r\nk=1\n") << QStringList{ "0 in line 1" };
    QTest::newRow("carriage returns only") << QByteArray("[a]\rk=1\rl=2\r") << QStringList{ "0 in line 1" };
    QTest::newRow("carriage return within a value")
        << QByteArray("[a]\nk=1\rl=2\n") << QStringList{ "1 a k=1\rl=2", "-1" };
}

void TestIniReader::skippedLines_data()
{
    columns();
    for (const char* line : { "", " ", "\t", " \t \t", ";", ";;", "; [b]", ";k=1", " ;k=1", "\t ; x", "; \xC3\xA4" })
        QTest::newRow(rowName(line)) << QByteArray("[a]\n") + line + "\nk=1\n" << QStringList{ "1 a k=1", "-1" };
}

void TestIniReader::sectionHeaders_data()
{
    columns();
    for (auto [line, section] :
         std::initializer_list<std::pair<const char*, const char*>>{ { "[1018sub1]", "1018sub1" },
                                                                     { "[1018sub1]  \t ; entry", "1018sub1" },
                                                                     { "[a];b", "a" },
                                                                     { "[a] ", "a" },
                                                                     { "[a]\t;]", "a" },
                                                                     { "[__]", "__" },
                                                                     { "[_a]", "_a" },
                                                                     { "[a_]", "a_" },
                                                                     { "[0]", "0" },
                                                                     { "[DeviceInfo]", "DeviceInfo" },
                                                                     { "[Gr\xC3\xB6\xC3\x9F"
                                                                       "e]",
                                                                       "Gr\xC3\xB6\xC3\x9F"
                                                                       "e" },
                                                                     { "[m\xC2\xB2]", "m\xC2\xB2" } })
        QTest::newRow(rowName(line)) << QByteArray(line) + "\nk=1\n"
                                     << QStringList{ QString("1 %1 k=1").arg(QString::fromUtf8(section)), "-1" };
}

void TestIniReader::brokenSectionHeaders_data()
{
    columns();
    for (const char* line :
         { "[",     "[]",    "[_]",   "[1018",          "[1018 sub1]", "[ a]",    "[a ]",
           "[a]b",  "[a] b", "[a]]",  "[a][b]",         "[[a]",        "[[a]]",   "[[[[[[[[a]]]]]]]]",
           "[a;b]", "[;a]",  "[a-b]", "[a.b]",          "[a\tb]",      "[a]\x0B", "[a]\xC2\xA0",
           "[]]",   "[_",    "[a=b]", "[\xE2\x82\xAC]", "[] ;",        "[a" })
        refusedRow(line);
}

void TestIniReader::deeplyNestedBracketsAreAnError()
{
    const QByteArray open(50000, '[');
    const QByteArray close(50000, ']');
    QCOMPARE(items(open + 'a' + close + "\nk=1\n"), QStringList{ "0 in line 1" });
    QCOMPARE(items("[a" + close + "\nk=1\n"), QStringList{ "0 in line 1" });
}

void TestIniReader::keyLines_data()
{
    columns();
    lineRow("k=1", "1 a k=1");
    lineRow("VendorName=ACME ; maker", "1 a VendorName=ACME");
    lineRow("k=", "1 a k=");
    lineRow("k=   ", "1 a k=");
    lineRow("k=;", "1 a k=");
    lineRow("k= ; comment", "1 a k=");
    lineRow("k=a;b", "1 a k=a");
    lineRow("k=a;b;c=d", "1 a k=a");
    lineRow("k=  a  b  ", "1 a k=a  b");
    lineRow("k=\t a \t", "1 a k=a");
    lineRow("k=\x0B\x0C a \x0C\x0B", "1 a k=a");
    lineRow("k=a=b", "1 a k=a=b");
    lineRow("k==", "1 a k==");
    lineRow("k=[b]", "1 a k=[b]");
    lineRow("k=$NODEID+0x180", "1 a k=$NODEID+0x180");
    lineRow("_k=1", "1 a _k=1");
    lineRow("k_=1", "1 a k_=1");
    lineRow("__=1", "1 a __=1");
    lineRow("1=0x1000", "1 a 1=0x1000");
    lineRow("BaudRate_10=1", "1 a BaudRate_10=1");
    lineRow("VENDORNAME=1", "1 a VENDORNAME=1");
}

void TestIniReader::lettersAndDigitsOfAllLanguagesMakeKeys()
{
    QCOMPARE(items("[a]\nGr\xC3\xB6\xC3\x9F"
                   "e=1\nm\xC2\xB2=2\n\xD0\x96=\xE2\x82\xAC\n"),
             (QStringList{ QString::fromUtf8("1 a Größe=1"), QString::fromUtf8("2 a m²=2"),
                           QString::fromUtf8("2 a Ж=€"), "-1" }));
}

void TestIniReader::brokenKeyLines_data()
{
    columns();
    for (const char* line : { "VendorName = ACME",
                              "k =1",
                              "k\t=1",
                              "k",
                              "=",
                              "=1",
                              "_=1",
                              "_",
                              "k-1=1",
                              "k.1=1",
                              "k;1=2",
                              "#k=1",
                              "-k=1",
                              "k]=1",
                              "]",
                              "\"k\"=1",
                              "k\xE2\x82\xAC=1",
                              "\xE2\x82\xAC=1",
                              "k;=1",
                              "\x0B",
                              "\x0Bk=1",
                              "\xC2\xA0k=1" })
        refusedRow(line);
}

void TestIniReader::textAfterLeadingBlanksIsAnError_data()
{
    columns();
    for (const char* line : { "   x", " k=1", "\tk=1", " [b]", " x;", "  \t =", " \x0B", " \xC2\xA0" })
        refusedRow(line);
}

void TestIniReader::zeroBytes_data()
{
    columns();
    QTest::newRow("in a comment") << bytes("[a]\n;\0x\nk=1\n") << QStringList{ "1 a k=1", "-1" };
    QTest::newRow("after a semicolon") << bytes("[a]\nk=1;\0\n") << QStringList{ "1 a k=1", "-1" };
    QTest::newRow("in a value") << bytes("[a]\nk=1\0002\nl=3\n")
                                << QStringList{ QString("1 a k=1") + QChar(0) + '2', "2 a l=3", "-1" };
    QTest::newRow("in a key") << bytes("[a]\nk\0=1\n") << QStringList{ "0 in line 2" };
    QTest::newRow("in a section name") << bytes("[a\0]\nk=1\n") << QStringList{ "0 in line 1" };
    QTest::newRow("after a header") << bytes("[a]\0\nk=1\n") << QStringList{ "0 in line 1" };
    QTest::newRow("after blanks") << bytes("[a]\n \0\n") << QStringList{ "0 in line 2" };
    QTest::newRow("as a line") << bytes("[a]\nk=1\n\0\n") << QStringList{ "1 a k=1", "0 in line 3" };
    QTest::newRow("only") << QByteArray(1000, '\0') << QStringList{ "0 in line 1" };
}

void TestIniReader::lineNumbersReachFar()
{
    QCOMPARE(items("[a]\n" + QByteArray(1000000, '\n') + "?"), QStringList{ "0 in line 1000002" });
}

QTEST_APPLESS_MAIN(TestIniReader)
#include "TestIniReader.moc"
