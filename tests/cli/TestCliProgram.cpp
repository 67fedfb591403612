// What all commands of velmora-cli have in common: that there must be one, and how they find data sheets.
// SPDX-License-Identifier: MIT
#include "CliRun.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestCliProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandIsNeeded_data();
    void commandIsNeeded();
    void nameOfAFileIsNotEmpty_data();
    void nameOfAFileIsNotEmpty();
    void sheetWithoutFolderIsFoundWhereItIsInstalled_data();
    void sheetWithoutFolderIsFoundWhereItIsInstalled();
};

void TestCliProgram::commandIsNeeded_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("none") << QStringList{} << "a command is missing";
    QTest::newRow("foo") << QStringList{ "foo", "-n", "5" } << "no such command: foo";
    QTest::newRow("empty") << QStringList{ "" } << "no such command: ";
    QTest::newRow("option") << QStringList{ "--foo" } << "a command comes first, not --foo";
}

void TestCliProgram::commandIsNeeded()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QCOMPARE(shownBy(arguments), shown(2, "", "velmora-cli: " + message + "\nvelmora-cli: try 'velmora-cli --help'\n"));
}

// A variable of a script that is not set.
void TestCliProgram::nameOfAFileIsNotEmpty_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QStringList device{ "-i", "localhost:1", "-n", "5" };
    QTest::newRow("sheet") << QStringList{ "read", "-s", "", "1017" } + device;
    QTest::newRow("output") << QStringList{ "dump", "-s", "demo.eds", "-o", "" } + device;
    QTest::newRow("restore") << QStringList{ "restore", "" } + device;
    QTest::newRow("compare") << QStringList{ "compare", "a.csv", "" };
}

void TestCliProgram::nameOfAFileIsNotEmpty()
{
    QFETCH(QStringList, arguments);
    QCOMPARE(shownBy(arguments), shown(2, "",
                                       "velmora-cli: the name of a file is empty\nvelmora-cli: try 'velmora-cli " +
                                           arguments.front() + " --help'\n"));
}

void TestCliProgram::sheetWithoutFolderIsFoundWhereItIsInstalled_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    const QString gateway = "localhost:1"; // nobody is there: the sheet was read before
    QTest::newRow("check") << QStringList{ "check", "demo.eds" } << 0;
    QTest::newRow("list") << QStringList{ "list", "demo.eds" } << 0;
    QTest::newRow("diff") << QStringList{ "diff", "demo.eds", "demo.eds" } << 0;
    QTest::newRow("compare") << QStringList{ "compare", "demo.eds", "demo.eds" } << 0;
    QTest::newRow("read") << QStringList{ "read", "-i", gateway, "-n", "5", "-s", "demo.eds", "Brightness" } << 3;
    QTest::newRow("write") << QStringList{ "write", "-i", gateway, "-n", "5", "-s", "demo.eds", "Brightness", "1" }
                           << 3;
    QTest::newRow("dump") << QStringList{ "dump", "-i", gateway, "-n", "5", "-s", "demo.eds" } << 3;
    QTest::newRow("restore") << QStringList{ "restore", "-i", gateway, "-n", "5", "demo.eds" } << 3;
}

// As the package puts them: the program in bin, the sheets in share/velmora.
void TestCliProgram::sheetWithoutFolderIsFoundWhereItIsInstalled()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    const QTemporaryDir prefix;
    QVERIFY(QDir(prefix.path()).mkpath("bin") && QDir(prefix.path()).mkpath("share/velmora"));
    const QString program = prefix.filePath("bin/velmora-cli");
    QVERIFY(QFile::copy(VELMORA_CLI, program));
    QVERIFY(QFile::copy(VELMORA_SHARE "/velmora-demo.eds", prefix.filePath("share/velmora/demo.eds")));
    QCOMPARE(runProgram(program, arguments, prefix.path()).status, status);
    QVERIFY(QFile::remove(prefix.filePath("share/velmora/demo.eds")));
    QCOMPARE(runProgram(program, arguments, prefix.path()).status, 2);
}

QTEST_GUILESS_MAIN(TestCliProgram)
#include "TestCliProgram.moc"
