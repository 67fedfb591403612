// Every system call on files fails in the real velmora-cli: it says so and ends, what it writes is whole or as before.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "FaultRun.h"
#include "SheetFile.h"
#include "SmallDevice.h"

#include <QProcessEnvironment>

using faultRun::tFault;

class TestFailingPrograms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCallFails_data();
    void everyCallFails();
    void cleanupTestCase() { qInfo("%d calls of velmora-cli were failed", failedCalls); }

private:
    static inline int failedCalls = 0;
};

void TestFailingPrograms::everyCallFails_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("check") << QStringList({ "check", "%1" });
    QTest::newRow("diff") << QStringList({ "diff", "%1", "%3/saved.dcf" });
    QTest::newRow("dump") << QStringList({ "dump", "-i", "%2", "-n", "5", "-s", "%1", "-o", "%3/new.csv" });
    QTest::newRow("dump as DCF") << QStringList({ "dump", "-i", "%2", "-n", "5", "-s", "%1", "-o", "%3/saved.dcf" });
    QTest::newRow("restore") << QStringList({ "restore", "-i", "%2", "-n", "5", "%3/saved.dcf" });
}

// The plausible errors are tried in TestFailingFiles; here the first of them, once and from then on.
void TestFailingPrograms::everyCallFails()
{
    QFETCH(QStringList, arguments);
    CScriptedDevice device;
    const QTemporaryDir folder, other;
    const QString sheet = folder.filePath("small.eds"), report = other.filePath("report");
    for (QString& argument : arguments)
        argument.replace("%1", sheet).replace("%2", device.interface()).replace("%3", folder.path());
    const QByteArray oldValue = "ParameterValue=0x0001\r\n";
    const QByteArray configuration = smallSheet().replace("[2001]", oldValue + "[2001]");
    const auto write = [](const QString& name, const QByteArray& content) {
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("no file");
    };
    const auto contents = [&folder] {
        QByteArray all;
        for (const QString& name : QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System))
            all += name.toUtf8() + '\n' + bytesOf(folder.filePath(name)) + '\n';
        return all;
    };
    QByteArray before, valueBefore;
    const auto run = [&](const tFault& fault) {
        for (const QString& name : QDir(folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System))
            QFile::remove(folder.filePath(name));
        setValues(device);
        write(sheet, smallSheet());
        write(folder.filePath("saved.dcf"), configuration);
        before = contents();
        valueBefore = device.value(0x2000, 0);
        QFile::remove(report);
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("LD_PRELOAD", VELMORA_FAILING_CALLS);
        variables.insert("VELMORA_FAIL_BELOW", folder.path());
        variables.insert("VELMORA_FAIL_NTH", QString::number(fault.nth));
        variables.insert("VELMORA_FAIL_ERROR", QString::number(fault.error));
        variables.insert("VELMORA_FAIL_HOW", QString::number(fault.how));
        variables.insert("VELMORA_FAIL_REPORT", report);
        return runProgram(VELMORA_CLI, arguments, variables);
    };
    const tCliRun good = run({});
    QVERIFY2(good.status == 0 || good.status == 1, good.error);
    const QByteArray after = contents(), value = device.value(0x2000, 0);
    std::vector<std::string> calls;
    for (const QByteArray& name : bytesOf(report).split('\n').mid(2))
        if (!name.isEmpty())
            calls.push_back(name.toStdString());
    QVERIFY(calls.size() > 10);

    int previous = 0;
    for (const tFault& fault : faultRun::faultsOf(calls)) {
        const bool isFirst = fault.nth != previous || fault.how == failShort;
        if (!isFirst && (fault.how != failForEver || fault.error != faultRun::errorsOfCalls.at(fault.call).front()))
            continue;
        previous = fault.nth;
        const tCliRun now = run(fault);
        const QByteArray shown = fault.text() + ": status " + QByteArray::number(now.status) + ", " + now.error;
        const bool isRefused = now.status == 2 && now.error.contains("velmora-cli: cannot ");
        const bool isUnseen = now.status == 2 && (now.error.contains("velmora-cli: no such file: ") ||
                                                  now.error.contains("velmora-cli: not a file: "));
        QVERIFY2(now.status == good.status || isRefused || isUnseen, shown);
        QVERIFY2(now.status != good.status || now.output == good.output, shown + now.output);
        const QByteArray left = contents();
        if (fault.call != "unlink")
            QVERIFY2(left == (now.status == good.status ? after : before), shown + left);
        QVERIFY2(device.value(0x2000, 0) == (now.status == good.status ? value : valueBefore), shown);
        const QList<QByteArray> reported = bytesOf(report).split('\n');
        QVERIFY2(reported.size() > 2 && reported[0] == "0", shown + " descriptors left open: " + reported[0]);
        failedCalls += reported[1].toInt();
    }
    const tCliRun next = run({});
    QCOMPARE(next.status, good.status);
    QCOMPARE(contents(), after);
}

QTEST_GUILESS_MAIN(TestFailingPrograms)
#include "TestFailingPrograms.moc"
