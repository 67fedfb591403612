// Memory runs out while a sheet loads: the process may end with a clear word. Nothing worse happens, the dictionary of
// the next load is whole, and a file that was to be written is whole or not there.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "FailingMemory.h"
#include "SheetFile.h"
#include "SmallDevice.h"

#include "dic/CANopenReader.h"
#include "sheets/DictionaryList.h"

#include <QProcessEnvironment>
#include <QRandomGenerator>
#include <QTest>

#include <csignal>
#include <new>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr quint32 seed = 13;

// 1, 2, 4 and so on, and so many others.
std::set<long> sampleOf(long most, int others)
{
    std::set<long> sample;
    for (long nth = 1; nth <= most; nth *= 2)
        sample.insert(nth);
    QRandomGenerator random(seed);
    for (int n = 0; n < others; ++n)
        sample.insert(1 + static_cast<long>(random.bounded(static_cast<quint64>(most))));
    return sample;
}

constexpr char sheetName[] = VELMORA_SHARE "/velmora-demo.eds";
constexpr long never = 1'000'000'000;

// Loads the sheet with an allocation that fails. @return its entries as a list, "caught" after an exception
QByteArray loadWith(long nth, bool all)
{
    CCANopen dictionary;
    CCANopenReader reader(&dictionary, CCANopen::typeEDS);
    failing_memory_arm(nth, all ? 1 : 0);
    try {
        reader.load(sheetName);
    } catch (const std::bad_alloc&) {
        failing_memory_arm(0, 0);
        return "caught";
    }
    failing_memory_arm(0, 0);
    return listAsCsv(dictionaryList(dictionary, {}));
}

long allocationsOfALoad()
{
    CCANopen dictionary;
    CCANopenReader reader(&dictionary, CCANopen::typeEDS);
    failing_memory_arm(never, 0);
    reader.load(sheetName);
    const long count = failing_memory_count();
    failing_memory_arm(0, 0);
    return count;
}

// In a child process, since what ends by std::terminate ends it: 1 caught, 0 loaded, 2 another dictionary than `whole`.
[[noreturn]] void endAfterLoad(long nth, bool all, const QByteArray& whole)
{
    std::signal(SIGABRT, SIG_DFL); // the test library writes a report of it
    std::signal(SIGSEGV, SIG_DFL);
    ::close(STDERR_FILENO); // the word of std::terminate
    const QByteArray list = loadWith(nth, all);
    const bool isWhole = list == "caught" || list == whole;
    _exit(isWhole && loadWith(never, false) == whole ? (list == "caught" ? 1 : 0) : 2);
}

} // namespace

class TestFailingMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qInfo("seed %u", seed); }
    void dictionaryIsWholeOrTheLoadEnds_data();
    void dictionaryIsWholeOrTheLoadEnds();
    void programEndsWithAWord_data();
    void programEndsWithAWord();
    void cleanupTestCase() { qInfo("%d allocations were failed", failedCalls); }

private:
    static inline int failedCalls = 0;
};

void TestFailingMemory::dictionaryIsWholeOrTheLoadEnds_data()
{
    QTest::addColumn<bool>("all");
    QTest::newRow("one allocation") << false;
    QTest::newRow("all from then on") << true;
}

void TestFailingMemory::dictionaryIsWholeOrTheLoadEnds()
{
    QFETCH(const bool, all);
    const QByteArray whole = loadWith(never, false);
    QVERIFY(whole.count('\n') > 100);
    const long count = allocationsOfALoad();
    QVERIFY(count > 100);

    int caught = 0;
    for (const long nth : sampleOf(count, 150)) {
        const pid_t child = fork();
        if (child == 0)
            endAfterLoad(nth, all, whole);
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        const bool hasEnded = WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT;
        QVERIFY2(hasEnded || (WIFEXITED(status) && WEXITSTATUS(status) <= 1),
                 qPrintable(QString("allocation %1: %2").arg(nth).arg(status, 0, 16)));
        caught += WIFEXITED(status) ? WEXITSTATUS(status) : 0;
        ++failedCalls;
    }
    QVERIFY(caught > 0);
}

void TestFailingMemory::programEndsWithAWord_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("check") << QStringList({ "check", "%1" });
    QTest::newRow("list") << QStringList({ "list", "%1" });
    QTest::newRow("diff") << QStringList({ "diff", "%1", VELMORA_SHARE "/velmora-demo.eds" });
    QTest::newRow("dump") << QStringList({ "dump", "-i", "%2", "-n", "5", "-s", "%1", "-o", "%3" });
}

void TestFailingMemory::programEndsWithAWord()
{
    QFETCH(QStringList, arguments);
    CScriptedDevice device;
    setValues(device);
    const CSheetFile sheet(smallSheet(), "small.eds");
    const QTemporaryDir folder;
    const QString output = folder.filePath("saved.dcf"), report = folder.filePath("report");
    for (QString& argument : arguments)
        argument.replace("%1", sheet.name()).replace("%2", device.interface()).replace("%3", output);
    const auto run = [&](long nth, bool all) {
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("LD_PRELOAD", VELMORA_FAILING_MEMORY);
        variables.insert("VELMORA_MEMORY_WHILE", sheet.name());
        variables.insert("VELMORA_MEMORY_NTH", QString::number(nth));
        variables.insert("VELMORA_MEMORY_ALL", all ? "1" : "0");
        variables.insert("VELMORA_MEMORY_REPORT", report);
        QFile::remove(output);
        return runProgram(VELMORA_CLI, arguments, variables);
    };
    const tCliRun good = run(0, false);
    const QByteArray saved = bytesOf(output);
    QVERIFY(good.status == 0 || good.status == 1);
    const long count = bytesOf(report).toLong();
    QVERIFY(count > 10);
    for (const bool all : { false, true })
        for (const long nth : sampleOf(count, 12)) {
            const tCliRun now = run(nth, all);
            const QByteArray shown =
                QByteArray::number(qlonglong(nth)) + ": status " + QByteArray::number(now.status) + ", " + now.error;
            const bool isWord = now.error.contains("not enough memory") || now.error.contains("bad_alloc");
            // -1: ended by a signal; only that of std::terminate comes with a word.
            QVERIFY2(now.status == good.status || ((now.status == 2 || now.status == -1) && isWord), shown);
            QVERIFY2(now.output == good.output || now.output.isEmpty(), shown + now.output);
            const QByteArray left = bytesOf(output);
            QVERIFY2(left == saved || left == "(not there)", shown);
            QVERIFY2(now.status != good.status || left == saved, shown);
            ++failedCalls;
        }
    const tCliRun next = run(0, false);
    QCOMPARE(next.output, good.output);
    QCOMPARE(bytesOf(output), saved);
}

QTEST_GUILESS_MAIN(TestFailingMemory)
#include "TestFailingMemory.moc"
