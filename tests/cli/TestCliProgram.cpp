// velmora-cli without a command, or with one that is none.
// SPDX-License-Identifier: MIT
#include "CliRun.h"

#include <QTest>

class TestCliProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandIsNeeded_data();
    void commandIsNeeded();
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

QTEST_GUILESS_MAIN(TestCliProgram)
#include "TestCliProgram.moc"
