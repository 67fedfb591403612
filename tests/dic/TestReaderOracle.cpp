// What the tokenizer delivers, compared item by item with a second one that is plain and slow.
// SPDX-License-Identifier: MIT
#include "dic/IniReader.h"

#include "ReferenceReader.h"
#include "Sheet.h"

#include <QDirIterator>
#include <QRandomGenerator>
#include <QTest>

class TestReaderOracle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sheets_data();
    void sheets();
    void mutantsOfSheets_data() { sheets_data(); }
    void mutantsOfSheets();
    void piecesOfSheets();
    void blockEnds_data();
    void blockEnds();

private:
    static void compare(const QByteArray& text);
};

namespace
{

/// All that a reader tells after a step.
template <typename Reader>
QStringList state(const Reader& reader, int result)
{
    return { QString::number(result), QString::number(reader.getLineOfError()), reader.getSection(),
             reader.getKeyName(), reader.getKeyValue() };
}

const char* const pieces[] = { "[",
                               "]",
                               "\n",
                               "\r\n",
                               "\r",
                               "=",
                               ";",
                               " ",
                               "\t",
                               "_",
                               "a",
                               "[b]\n",
                               "k=v\n",
                               "\xC3\xA4",
                               "\xE4",
                               "\xC2\xA0",
                               "\xC2\x85",
                               "\xE3\x80\x80",
                               "\xE2\x80\x83",
                               "\xEF\xBB\xBF",
                               "\xD9\xA1",
                               "\xF0\x9F\x98\x80",
                               "\xF0\x9D\x9F\x98",
                               "\xED\xA0\x80",
                               "\xC0\xAF",
                               "\xE2\x82",
                               "\x80",
                               "\x9F",
                               "\v",
                               "\f",
                               "0x1F",
                               "=  v  ;c\n",
                               ";=\n",
                               "\xC2\xB2",
                               "\xF4\x90\x80\x80" };

QByteArray piece(QRandomGenerator& random)
{
    const quint32 which = random.bounded(quint32(std::size(pieces)) + 2);
    if (which == 0)
        return QByteArray(1, '\0');
    if (which == 1)
        return QByteArray(1, static_cast<char>(random.bounded(256)));
    return pieces[which - 2];
}

} // namespace

// Steps both through the text, and once more after the end.
void TestReaderOracle::compare(const QByteArray& text)
{
    const CSheetFile file(text);
    CIniReader reader(file.name());
    CReferenceReader reference(file.name());
    for (int result = 1; result > 0;) {
        result = reference.moveToNextItem();
        const QStringList expected = state(reference, result);
        const QStringList delivered = state(reader, reader.moveToNextItem());
        if (delivered != expected)
            QFAIL(qPrintable(delivered.join('|') + " and not " + expected.join('|') + " of " +
                             QString::fromLatin1(text.first(qMin<qsizetype>(text.size(), 2000)).toPercentEncoding())));
    }
}

void TestReaderOracle::sheets_data()
{
    QTest::addColumn<QString>("path");
    for (const char* folder : { VELMORA_TEST_DATA, VELMORA_SHARE, VELMORA_SAMPLE_SHEETS })
        for (QDirIterator files(folder, { "*.eds", "*.dcf", "*.EDS" }, QDir::Files, QDirIterator::Subdirectories);
             files.hasNext();) {
            const QString path = files.next();
            QTest::newRow(qPrintable(files.fileName())) << path;
        }
}

void TestReaderOracle::sheets()
{
    QFETCH(const QString, path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    compare(file.readAll());
}

// Some 50 mutants of a sheet: parts of it in which a few places are changed.
void TestReaderOracle::mutantsOfSheets()
{
    QFETCH(const QString, path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray sheet = file.readAll();
    QRandomGenerator random(quint32(sheet.size()));
    for (int round = 0; round < 50 && !QTest::currentTestFailed(); ++round) {
        QByteArray text = sheet.mid(random.bounded(qMax<int>(int(sheet.size()) - 1000, 1)), 2000);
        for (int change = random.bounded(5); change >= 0; --change)
            text.replace(random.bounded(int(text.size()) + 1), random.bounded(3), piece(random));
        compare("[a]\n" + text);
    }
}

void TestReaderOracle::piecesOfSheets()
{
    QRandomGenerator random(7);
    for (int round = 0; round < 5000 && !QTest::currentTestFailed(); ++round) {
        QByteArray text = round % 2 == 0 ? "[a]\n" : "";
        for (int count = random.bounded(25); count > 0; --count)
            text += piece(random);
        compare(text);
    }
}

void TestReaderOracle::blockEnds_data()
{
    QTest::addColumn<QByteArray>("unit");
    QTest::addColumn<QByteArray>("last");
    for (const char* unit : { "k=v\n", "k=\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80x\r\n", "k=\n;\n\n", "[a]\nk=  v\n" })
        for (const char* last : { "", "l=1", "l=\xE4\n", "?\n", "l=\xE2\x82" })
            QTest::addRow("%s...%s", unit, last) << QByteArray(unit) << QByteArray(last);
}

// Whatever lies across the end of a block of the file.
void TestReaderOracle::blockEnds()
{
    QFETCH(const QByteArray, unit);
    QFETCH(const QByteArray, last);
    for (int shift = 0; shift < 4 && !QTest::currentTestFailed(); ++shift)
        compare("[a]\n;" + QByteArray(shift, 'x') + '\n' + unit.repeated(140000 / int(unit.size())) + last);
}

QTEST_APPLESS_MAIN(TestReaderOracle)
#include "TestReaderOracle.moc"
