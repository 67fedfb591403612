// Large data sheets: the time grows with the number of lines, the memory with the size of the file.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"

#include "Sheet.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTest>

#include <cstdio>
#include <ctime>
#include <functional>
#include <limits>

#if defined(__has_feature)
#define VELMORA_HAS_FEATURE(feature) __has_feature(feature)
#else
#define VELMORA_HAS_FEATURE(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || VELMORA_HAS_FEATURE(address_sanitizer)
static constexpr bool sanitized = true;
#else
static constexpr bool sanitized = false;
#endif

using tMaker = std::function<QByteArray(int)>;
Q_DECLARE_METATYPE(tMaker)

static QByteArray hex(int index)
{
    return QByteArray::number(index, 16);
}

static QByteArray list(int count, int first, int step)
{
    QByteArray text = "[OptionalObjects]\n";
    for (int number = 0; number < count; ++number)
        text += QByteArray::number(number + 1) + "=0x" + hex(first + number * step) + '\n';
    return text;
}

static QByteArray variable(int index)
{
    return '[' + hex(index) + "]\nParameterName=Object\nObjectType=0x7\nDataType=0x0007\nAccessType=rw\n" +
           "DefaultValue=0\nPDOMapping=0\n";
}

// Sheets of that many sections, where finding the object of a section could cost as much as there are objects.
static QByteArray declaredObjects(int count)
{
    QByteArray text = list(count, 0x1000, 1);
    for (int number = count; number > 0; --number)
        text +=
            variable(0x1000 + number - 1) + '[' + hex(0x1000 + number - 1) + "sub1]\nDataType=0x0007\nAccessType=rw\n";
    return text;
}

static QByteArray undeclaredSections(int count)
{
    QByteArray text = list(count, 0x1000, 1);
    for (int number = 0; number < count; ++number)
        text += variable(0x8000 + number);
    return text;
}

static QByteArray oneIndexAgainAndAgain(int count)
{
    QByteArray text = list(count, 0x1000, 0) + "1=0x1001\n";
    for (int number = 0; number < count; ++number)
        text += variable(0x1000) + variable(0x1001);
    return text;
}

static QByteArray entriesOfOneObject(int count)
{
    QByteArray text = "[1000]\nObjectType=8\n";
    for (int number = 0; number < count; ++number)
        text += "[1000sub" + hex(1 + number % 255) + "]\nParameterName=Entry\nDataType=7\n";
    return text;
}

// Processor time of loading the sheet, in clock ticks; -1 for another number of objects.
static qint64 timeOf(const CSheetFile& file, int objects)
{
    CCANopen dictionary;
    const std::clock_t start = std::clock();
    const int result = CCANopenReader(&dictionary, CCANopen::typeEDS).load(file.name());
    const qint64 ticks = std::clock() - start;
    return result == 1 && int(dictionary.m_objectArray.size()) == objects ? ticks : -1;
}

// Highest amount of memory that this process has used, in bytes.
static qint64 peakMemory()
{
    QFile status("/proc/self/status");
    if (status.open(QIODevice::ReadOnly))
        for (const QByteArray& line : status.readAll().split('\n'))
            if (line.startsWith("VmHWM:"))
                return line.mid(6).chopped(3).trimmed().toLongLong() * 1024;
    return -1;
}

// What this program does as the other process: loads one sheet and prints result, objects and memory.
static int measure(const char* fileName)
{
    CCANopen dictionary;
    const int result = CCANopenReader(&dictionary, CCANopen::typeEDS).load(fileName);
    std::printf("%d %zu %lld\n", result, dictionary.m_objectArray.size(), static_cast<long long>(peakMemory()));
    return 0;
}

class TestSheetSize : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void announcedEntriesGetTheirRoomAtOnce_data();
    void announcedEntriesGetTheirRoomAtOnce();
    void timeGrowsWithTheNumberOfSections_data();
    void timeGrowsWithTheNumberOfSections(); // ten times for ten times the sections, far from a hundred
    void memoryStaysNearTwiceTheFile_data();
    void memoryStaysNearTwiceTheFile(); // texts are kept in two bytes a character
    void lineOfAnObjectListCostsLittle();

private:
    // Entries of an object that keep their values, no two alike, with `letter` in a name.
    static QByteArray names(const QByteArray& letter, int size)
    {
        QByteArray text = "[2000]\nParameterName=" + letter + "\n";
        for (int number = 0; number < size / 60030; ++number)
            text += "[2000sub1]\nDefaultValue=" + QByteArray::number(number).rightJustified(60000, 'x') + '\n';
        return text;
    }

    // Result, objects and memory of loading the sheet in a process that does nothing else.
    static QByteArrayList measuredInAnotherProcess(const CSheetFile& file)
    {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), { "--measure", file.path() });
        process.waitForFinished(-1); // no limit
        return process.readAllStandardOutput().trimmed().split(' ');
    }
    // What the process itself uses; it depends on the compiler and on the version of Qt.
    static qint64 memoryOfAnEmptySheet() { return measuredInAnotherProcess(CSheetFile("")).value(2).toLongLong(); }
};

void TestSheetSize::announcedEntriesGetTheirRoomAtOnce_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<int>("room");
    QTest::newRow("as many as there are") << QByteArray("3") << 3;
    QTest::newRow("too many to believe") << QByteArray("255") << 16;
}

void TestSheetSize::announcedEntriesGetTheirRoomAtOnce()
{
    QFETCH(QByteArray, number);
    const CLoadedSheet sheet("[1018]\nObjectType=9\nSubNumber=" + number +
                             "\n[1018sub0]\nDataType=5\n[1018sub1]\nDataType=7\n[1018sub2]\nDataType=7\n");
    QCOMPARE(sheet.outline(), QString("1018[0 1 2]"));
    QTEST(int(sheet[0]->m_objectEntryArray.capacity()), "room");
}

void TestSheetSize::timeGrowsWithTheNumberOfSections_data()
{
    QTest::addColumn<tMaker>("maker");
    QTest::addColumn<int>("objectsOf1000");
    QTest::addColumn<int>("objectsOf10000");
    QTest::newRow("declared objects") << tMaker(declaredObjects) << 1000 << 10000;
    QTest::newRow("undeclared sections") << tMaker(undeclaredSections) << 1000 << 10000;
    QTest::newRow("one index again and again") << tMaker(oneIndexAgainAndAgain) << 1001 << 10001;
    QTest::newRow("entries of one object") << tMaker(entriesOfOneObject) << 1 << 1;
}

void TestSheetSize::timeGrowsWithTheNumberOfSections()
{
    QFETCH(tMaker, maker);
    QFETCH(int, objectsOf1000);
    QFETCH(int, objectsOf10000);
    const CSheetFile smallSheet(maker(1000)), largeSheet(maker(10000));
    qint64 small = std::numeric_limits<qint64>::max(), large = small;
    // Other processes can only make it longer: the shortest times count, and a few rounds are normally enough.
    for (int round = 0; round < 3 || (round < 30 && large >= 25 * small); ++round) {
        small = qMin(small, timeOf(smallSheet, objectsOf1000));
        large = qMin(large, timeOf(largeSheet, objectsOf10000));
        QVERIFY2(small > 0 && large > 0, "the number of objects is not that of the sheet");
    }
    const QString times = QString("%1 and %2 clock ticks").arg(small).arg(large);
    QVERIFY2(large < 25 * small, qPrintable(times));
}

void TestSheetSize::memoryStaysNearTwiceTheFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("expected"); // result and objects
    const int size = 24000000;
    const auto row = [](const char* name, const QByteArray& text, const char* expected) {
        QTest::newRow(name) << text << QByteArray(expected);
    };
    row("one line", "[Comments]\n" + QByteArray("k=").repeated(size / 2), "1 0");
    row("one line without sense", QByteArray(size, 'x'), "0 0");
    row("one line of blanks", QByteArray(size, ' '), "1 0");
    row("one comment", QByteArray(size, ';'), "1 0");
    row("comments", QByteArray("; Nobody reads this line, which is a comment.\n").repeated(size / 46), "1 0");
    row("empty lines", QByteArray(size / 2, '\n'), "1 0");
    row("ignored values", "[Comments]\n" + ("Line=" + QByteArray(60000, 'x') + '\n').repeated(size / 60006), "1 0");
    row("names", names("", size), "1 1");
    row("names in Windows-1252", names("\xE4", size), "1 1");
}

void TestSheetSize::memoryStaysNearTwiceTheFile()
{
    if (sanitized)
        QSKIP("the sanitizer needs memory of its own");
    QFETCH(QByteArray, text);
    const CSheetFile file(text);
    const QByteArrayList measured = measuredInAnotherProcess(file);
    QCOMPARE(measured.size(), 3);
    QTEST(measured[0] + ' ' + measured[1], "expected");
    const qint64 peak = measured[2].toLongLong();
    QVERIFY(peak > 0);
    const qint64 bytes = peak - memoryOfAnEmptySheet();
    QVERIFY2(bytes < text.size() * 22 / 10, qPrintable(QString("%1 bytes for %2").arg(bytes).arg(text.size())));
}

void TestSheetSize::lineOfAnObjectListCostsLittle()
{
    if (sanitized)
        QSKIP("the sanitizer needs memory of its own");
    const int count = 200000;
    const CSheetFile file("[OptionalObjects]\n" + QByteArray("1=1\n").repeated(count));
    const QByteArrayList measured = measuredInAnotherProcess(file);
    QCOMPARE(measured.size(), 3);
    QCOMPARE(measured[1].toInt(), count);
    const double each = double(measured[2].toLongLong() - memoryOfAnEmptySheet()) / count;
    QVERIFY2(each < 400, qPrintable(QString("%1 bytes for each line").arg(each)));
}

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--measure") == 0)
        return measure(argv[2]);
    const QCoreApplication application(argc, argv);
    TestSheetSize test;
    return QTest::qExec(&test, argc, argv);
}
#include "TestSheetSize.moc"
