// Data sheets with the values of a configuration, and the reason when one is refused.
// SPDX-License-Identifier: MIT
#include "dic/DataSheet.h"

#include "Sheet.h"

#include <QDir>
#include <QTest>

namespace
{

const char configured[] = R"([ManufacturerObjects]
1=0x2000
2=0x2001
[2000]
ParameterName=Limit
ObjectType=0x7
DataType=0x0006
DefaultValue=5
ParameterValue=$NODEID+7
[2001]
ParameterName=List
ObjectType=0x8
ParameterValue=lost, since no entry is there yet
[2001sub0]
ParameterValue=
[2001sub1]
ParameterValue=first
ParameterValue=last
[2001sub2]
DefaultValue=2
[2001sub3]
ParameterValue=first
ParameterValue=
[2001sub4]
ParameterValue=
ParameterValue=last
)";

// The value of the entry at these places; "none" when it has none.
QString valueOf(const CDataSheet& sheet, std::size_t object, std::size_t entry)
{
    const auto& entries = sheet.dictionary().m_objectArray[object]->m_objectEntryArray;
    const auto value = sheet.parameterValues().find(entries[entry].get());
    return value == sheet.parameterValues().end() ? QStringLiteral("none") : value->second;
}

} // namespace

class TestDataSheet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void configurationGivesItsValuesByEntry();
    void linesOfEachEntryAreTold();
    void fileNameDecidesWhetherValuesCount_data();
    void fileNameDecidesWhetherValuesCount();
    void refusalNamesLineTextAndRule_data();
    void refusalNamesLineTextAndRule();
    void realSheetThatStopsIsExplained();
    void fileThatCannotBeReadIsNoSheet_data();
    void fileThatCannotBeReadIsNoSheet();
    void namesOfFilesAreShownVisible();
    void linesAreShownCutAndVisible_data();
    void linesAreShownCutAndVisible();
};

void TestDataSheet::configurationGivesItsValuesByEntry()
{
    const CSheetFile file(configured, "device.dcf");
    CDataSheet sheet;
    QCOMPARE(sheet.load(file.path()), CDataSheet::loaded);
    QCOMPARE(sheet.error(), QString());
    QCOMPARE(sheet.dictionary().getFileName(), file.path());
    QCOMPARE(sheet.dictionary().m_fileType, CCANopen::typeDCF);
    QCOMPARE(valueOf(sheet, 0, 0), QString("$NODEID+7"));
    QCOMPARE(valueOf(sheet, 1, 0), QString("none")); // an empty text
    QCOMPARE(valueOf(sheet, 1, 1), QString("last"));
    QCOMPARE(valueOf(sheet, 1, 2), QString("none"));
    QCOMPARE(valueOf(sheet, 1, 3), QString("none")); // the empty text erases the one before it
    QCOMPARE(valueOf(sheet, 1, 4), QString("last"));
    QCOMPARE(int(sheet.parameterValues().size()), 3);
}

void TestDataSheet::linesOfEachEntryAreTold()
{
    const CSheetFile file(configured, "device.dcf");
    tSheetLines lines;
    CDataSheet sheet;
    QCOMPARE(sheet.load(file.path(), &lines), CDataSheet::loaded);
    const auto& objects = sheet.dictionary().m_objectArray;
    const auto told = [&](std::size_t object, std::size_t entry) { // last line: lines of values, whether one has a text
        const auto found = lines.find(objects[object]->m_objectEntryArray[entry].get());
        if (found == lines.end())
            return QString("none");
        QString text = QString("%1:").arg(found->second.last);
        for (const int line : found->second.values)
            text += QString(" %1").arg(line);
        return text + (found->second.hasValue ? " text" : " no text");
    };
    QCOMPARE(told(0, 0), QString("9: 9 text"));
    QCOMPARE(told(1, 0), QString("15: 15 no text"));
    QCOMPARE(told(1, 1), QString("18: 17 18 text"));
    QCOMPARE(told(1, 2), QString("20: no text"));
    QCOMPARE(told(1, 3), QString("23: 22 23 text")); // the last one is empty, but not the first
    QCOMPARE(told(1, 4), QString("26: 25 26 text"));
    QCOMPARE(lines.size(), std::size_t(6));
}

void TestDataSheet::fileNameDecidesWhetherValuesCount_data()
{
    QTest::addColumn<int>("values");
    QTest::newRow("device.dcf") << 3;
    QTest::newRow("DEVICE.DCF") << 3;
    QTest::newRow("device.eds") << 0;
    QTest::newRow("device.dcf.txt") << 0;
}

void TestDataSheet::fileNameDecidesWhetherValuesCount()
{
    const CSheetFile file(configured, QTest::currentDataTag());
    CDataSheet sheet;
    QCOMPARE(sheet.load(file.path()), CDataSheet::loaded);
    QTEST(int(sheet.parameterValues().size()), "values");
}

void TestDataSheet::refusalNamesLineTextAndRule_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    const QString key = "a key is NAME=VALUE, the name of letters, digits and \"_\" only; a comment begins with \";\"";
    const QString section = "a section is [NAME] of letters, digits and \"_\", followed by nothing or a comment that "
                            "begins with \";\"";
    const auto row = [](const char* name, const QByteArray& text, const QString& where, const QString& rule) {
        QTest::newRow(name) << text << QString("not a valid data sheet: FILE, line %1 (%2)").arg(where, rule);
    };
    row("key", "[a]\nk=1\n#k=2\n", "3: \"#k=2\"", key);
    row("key that ends with CR LF", "[a]\r\nk =1\r\n", "2: \"k =1\"", key);
    row("last line without line end", "[a]\nk", "2: \"k\"", key);
    row("Windows-1252", "[a]\n\xE4-=\x80\n", "2: \"\u00E4-=\u20AC\"", key);
    row("percent signs and quotes", "[a]\n%1 \"%2\"\n", "2: \"%1 \"%2\"\"", key);
    row("far from the start", "[a]\n" + QByteArray("k=1\n").repeated(50000) + "#k=2\n", "50002: \"#k=2\"", key);
    row("rest of a line that is too long", "[a]\nk=" + QByteArray(0x10000, '#') + "\n", "3: \"##\"", key);
    row("section", "\n[a\n", "2: \"[a\"", section);
    row("first key", "k=1\n", "1: \"k=1\"", "a section comes before the first key");
    row("blanks", "[a]\n\t k=1\n", "2: \"\\t k=1\"",
        "after blanks a line holds nothing, or a comment that begins with \";\"");
    QTest::newRow("no objects") << QByteArray("[Comments]\nLines=1\n") << QString("no objects in FILE");
}

void TestDataSheet::refusalNamesLineTextAndRule()
{
    QFETCH(QByteArray, text);
    const CSheetFile file(text);
    CDataSheet sheet;
    QCOMPARE(sheet.load(file.path()), CDataSheet::refused);
    QTEST(QString(sheet.error()).replace(file.path(), "FILE"), "message");
}

void TestDataSheet::realSheetThatStopsIsExplained()
{
    const QString path = VELMORA_SAMPLE_SHEETS "/e35.eds";
    if (!QFile::exists(path))
        QSKIP("the sample data sheets are not here");
    CDataSheet sheet;
    QCOMPARE(sheet.load(path), CDataSheet::refused);
    QVERIFY2(sheet.error().contains("line 7251: \"#ParameterValue=0x2\""), qPrintable(sheet.error()));
}

void TestDataSheet::fileThatCannotBeReadIsNoSheet_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("message");
    QTest::newRow("missing") << "/no/such.eds"
                             << "no such file: /no/such.eds";
    QTest::newRow("folder") << QDir::tempPath() << "not a file: " + QDir::tempPath();
    QTest::newRow("device") << "/dev/null"
                            << "not a file: /dev/null";
    QTest::newRow("control characters") << "/no/a\n\u001B[31mb.eds"
                                        << "no such file: /no/a\\x0A\\x1B[31mb.eds";
    QTest::newRow("long name") << "/no/" + QString(200, 'x') << "no such file: /no/" + QString(200, 'x');
}

void TestDataSheet::fileThatCannotBeReadIsNoSheet()
{
    QFETCH(QString, path);
    CDataSheet sheet;
    QCOMPARE(sheet.load(path), CDataSheet::noFile);
    QTEST(sheet.error(), "message");
}

void TestDataSheet::namesOfFilesAreShownVisible()
{
    const QByteArray name = "\u001B[31m.eds";
    const QByteArray shown = "/\\x1B[31m.eds";
    const auto errorOf = [&name](const QByteArray& text) {
        const CSheetFile file(text, name);
        CDataSheet sheet;
        sheet.load(file.path());
        return sheet.error();
    };
    QVERIFY2(errorOf("[a]\nk\n").contains(shown + ", line 2"), qPrintable(errorOf("[a]\nk\n")));
    QVERIFY2(errorOf("[a]\n").endsWith(shown), qPrintable(errorOf("[a]\n")));
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(name));
    CDataSheet sheet;
    QCOMPARE(sheet.load(folder.filePath(name)), CDataSheet::noFile);
    QVERIFY2(sheet.error().startsWith("not a file: ") && sheet.error().endsWith(shown), qPrintable(sheet.error()));
}

void TestDataSheet::linesAreShownCutAndVisible_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("shown");
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("plain") << "[1000]"
                           << "[1000]";
    QTest::newRow("letters beyond ASCII") << "K\u00F6nig \u4E2D \U0001F600"
                                          << "K\u00F6nig \u4E2D \U0001F600";
    QTest::newRow("80 characters") << QString(80, 'x') << QString(80, 'x');
    QTest::newRow("81 characters") << QString(81, 'x') << QString(80, 'x') + "...";
    QTest::newRow("no character in halves") << QString(79, 'x') + "\U0001F600" << QString(79, 'x') + "...";
    QTest::newRow("no escape in halves") << QString(78, 'x') + "\u001B" << QString(78, 'x') + "...";
    QTest::newRow("tab and carriage return") << "\ta\r"
                                             << "\\ta\\r";
    QTest::newRow("zero") << QString(QChar(0)) << "\\x00";
    QTest::newRow("escape") << "\u001B[31m"
                            << "\\x1B[31m";
    QTest::newRow("control character of Latin-1") << "\u009B"
                                                  << "\\x9B";
    QTest::newRow("right to left") << "\u202Etxt"
                                   << "\\u202Etxt";
    QTest::newRow("byte order mark") << QChar(0xFEFF) + QString("[a]") << "\\uFEFF[a]";
    QTest::newRow("line separator") << "\u2028"
                                    << "\\u2028";
    QTest::newRow("paragraph separator") << "\u2029"
                                         << "\\u2029";
    QTest::newRow("soft hyphen") << "\u00AD"
                                 << "\\xAD";
    QTest::newRow("private use") << "\uE000"
                                 << "\\uE000";
    QTest::newRow("private use beyond 16 bits") << "\U000F0000"
                                                << "\\uF0000";
    QTest::newRow("not assigned") << "\u0378"
                                  << "\\u0378";
    QTest::newRow("half of a pair") << QString(QChar(0xD800)) + "a"
                                    << "\uFFFDa";
}

void TestDataSheet::linesAreShownCutAndVisible()
{
    QFETCH(QString, line);
    QTEST(visibleLine(line), "shown");
}

QTEST_APPLESS_MAIN(TestDataSheet)
#include "TestDataSheet.moc"
