// The tolerant reading of lines: it agrees with the reader of the browser as far as that goes, and goes on after it.
// SPDX-License-Identifier: MIT
#include "sheets/SheetLines.h"

#include "dic/IniReader.h"

#include "SheetFile.h"

#include <QDir>
#include <QTest>

namespace
{

// What both readers tell: "section|key|value" of each item, and the line where the browser stops.
struct tStream {
    QStringList items;
    int stoppedAt = 0;

    bool operator==(const tStream&) const = default;
};

tStream byTheBrowser(const QByteArray& path)
{
    tStream stream;
    CIniReader reader(path);
    int result = 0;
    while ((result = reader.moveToNextItem()) > 0)
        stream.items << reader.getSection() + '|' + reader.getKeyName() + '|' + reader.getKeyValue();
    if (result == 0)
        stream.stoppedAt = reader.getLineOfError();
    return stream;
}

QString textOf(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

tStream byTheCheck(const QByteArray& path)
{
    tStream stream;
    CSheetLines lines(path);
    tSheetLine line;
    QString section;
    while (lines.next(line)) {
        if (line.brokenRule != nullptr) {
            stream.stoppedAt = line.number;
            return stream;
        }
        if (line.kind == lineHeader)
            section = textOf(line.name);
        if (line.kind == lineItem)
            stream.items << section + '|' + textOf(line.name) + '|' + textOf(line.value);
    }
    return stream;
}

} // namespace

class TestSheetLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAsTheBrowserDoes_data();
    void readsAsTheBrowserDoes();
    void brokenLineTellsWhereAndWhatWasMeant_data();
    void brokenLineTellsWhereAndWhatWasMeant();
    void goesOnAfterABrokenLine();
    void lineWithoutEndComesInBoundedPieces();
    void textAloneIsThatOfTheLine();
};

void TestSheetLines::readsAsTheBrowserDoes_data()
{
    QTest::addColumn<QString>("path");
    for (const char* folder : { VELMORA_TEST_DATA, VELMORA_TEST_DATA "/bad", VELMORA_TEST_DATA "/check",
                                VELMORA_TEST_DATA "/../fuzz/corpus/IniReader", VELMORA_SHARE, VELMORA_SAMPLE_SHEETS })
        for (const QFileInfo& file : QDir(folder).entryInfoList({ "*.eds", "*.dcf" }, QDir::Files))
            QTest::newRow(qPrintable(file.dir().dirName() + '/' + file.fileName())) << file.filePath();
}

void TestSheetLines::readsAsTheBrowserDoes()
{
    QFETCH(QString, path);
    const QByteArray name = QFile::encodeName(path);
    const tStream expected = byTheBrowser(name);
    const tStream found = byTheCheck(name);
    QCOMPARE(found.items, expected.items);
    QCOMPARE(found.stoppedAt, expected.stoppedAt);
}

void TestSheetLines::brokenLineTellsWhereAndWhatWasMeant_data()
{
    QTest::addColumn<int>("at");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    struct tRow {
        const char* line;
        int at;
        tLineKind kind;
        const char* name;
        const char* value;
    };
    for (const tRow& row : std::initializer_list<tRow>{ { "#ParameterValue=0x2", 0, lineComment, "", "" },
                                                        { "// note", 0, lineComment, "", "" },
                                                        { "! note", 0, lineComment, "", "" },
                                                        { "  # note", 2, lineComment, "", "" },
                                                        { "[ 1000 ]", 1, lineHeader, "1000", "" },
                                                        { " [1000]", 1, lineHeader, "1000", "" },
                                                        { "[1000] Device", 7, lineHeader, "1000", "" },
                                                        { "[1000", 5, lineHeader, "", "" },
                                                        { "[10 00]", 3, lineHeader, "", "" },
                                                        { "[]", 1, lineHeader, "", "" },
                                                        { "DataType = 0x5 ; x", 8, lineItem, "DataType", "0x5" },
                                                        { "\tDataType=0x5", 1, lineItem, "DataType", "0x5" },
                                                        { "Data-Type=0x5", 4, lineEmpty, "", "" },
                                                        { "=5", 0, lineEmpty, "", "" },
                                                        { "_=5", 1, lineEmpty, "", "" },
                                                        { "DataType", 8, lineEmpty, "", "" } })
        QTest::newRow(row.line) << row.at << int(row.kind) << row.name << row.value;
}

void TestSheetLines::brokenLineTellsWhereAndWhatWasMeant()
{
    const CSheetFile file(QByteArray("[A]\n") + QTest::currentDataTag() + "\n");
    CSheetLines lines(QFile::encodeName(file.name()));
    tSheetLine line;
    QVERIFY(lines.next(line) && lines.next(line));
    QVERIFY(line.brokenRule != nullptr);
    QTEST(int(line.brokenAt), "at");
    QTEST(int(line.kind), "kind");
    QTEST(textOf(line.name), "name");
    QTEST(textOf(line.value), "value");
}

void TestSheetLines::goesOnAfterABrokenLine()
{
    const CSheetFile file("a=1\n[A]\n#b=2\nc=3\n");
    CSheetLines lines(QFile::encodeName(file.name()));
    tSheetLine line;
    QStringList seen;
    while (lines.next(line))
        seen << QString("%1%2%3").arg(line.number).arg(line.brokenRule != nullptr ? "!" : " ", textOf(line.text));
    QCOMPARE(seen, QStringList({ "1!a=1", "2 [A]", "3!#b=2", "4 c=3" }));
}

void TestSheetLines::lineWithoutEndComesInBoundedPieces()
{
    const CSheetFile file("[A]\nb=" + QByteArray(1'000'000, 'x'));
    CSheetLines lines(QFile::encodeName(file.name()));
    tSheetLine line;
    int broken = 0;
    while (lines.next(line)) {
        QVERIFY(line.text.size() <= std::size_t(CLineFile::maxLine));
        broken += line.brokenRule != nullptr ? 1 : 0;
    }
    QCOMPARE(line.number, 1 + (1'000'002 + CLineFile::maxLine - 1) / CLineFile::maxLine);
    QCOMPARE(broken, line.number - 2);
}

void TestSheetLines::textAloneIsThatOfTheLine()
{
    const CSheetFile file("[A]\r\n\n#b\n");
    CSheetLines lines(QFile::encodeName(file.name()));
    tSheetLine line;
    QStringList seen;
    while (lines.nextText(line))
        seen << QString::number(line.number) + textOf(line.text);
    QCOMPARE(seen, QStringList({ "1[A]", "2", "3#b" }));
}

QTEST_APPLESS_MAIN(TestSheetLines)
#include "TestSheetLines.moc"
