// The NMT master commands: which frame each of them sends, and to whom.
// SPDX-License-Identifier: MIT
#include "FakeBus.h"
#include "cop/cop_api.h"
#include "cop/cop_nms.h"

#include <QtTest>

#include <cerrno>

using tCommand = int32_t (*)(BYTE node);
Q_DECLARE_METATYPE(tCommand)

class TestCopNms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandSendsItsSpecifierAndTheNode_data();
    void commandSendsItsSpecifierAndTheNode();
    void nodesAbove127AreRefusedAndNothingIsSent_data() { everyCommand(); }
    void nodesAbove127AreRefusedAndNothingIsSent();
    void theNodeIsCheckedBeforeTheController_data() { everyCommand(); }
    void theNodeIsCheckedBeforeTheController();
    void aFailedWriteIsReportedAndALaterCommandWorks_data() { everyCommand(); }
    void aFailedWriteIsReportedAndALaterCommandWorks();
    void noAnswerIsAwaited_data() { everyCommand(); }
    void noAnswerIsAwaited();
    void versionIsPinned();

private:
    static void everyCommand()
    {
        QTest::addColumn<tCommand>("command");
        QTest::newRow("start") << tCommand(&nmt_start_remote_node);
        QTest::newRow("stop") << tCommand(&nmt_stop_remote_node);
        QTest::newRow("pre-operational") << tCommand(&nmt_enter_preoperational);
        QTest::newRow("reset node") << tCommand(&nmt_reset_node);
        QTest::newRow("reset communication") << tCommand(&nmt_reset_communication);
    }
};

void TestCopNms::commandSendsItsSpecifierAndTheNode_data()
{
    QTest::addColumn<tCommand>("command");
    QTest::addColumn<int>("node");
    QTest::addColumn<QString>("frame");
    struct {
        const char* name;
        tCommand command;
        const char* specifier;
    } const commands[] = {
        { "start", &nmt_start_remote_node, "01" },
        { "stop", &nmt_stop_remote_node, "02" },
        { "pre-operational", &nmt_enter_preoperational, "80" },
        { "reset node", &nmt_reset_node, "81" },
        { "reset communication", &nmt_reset_communication, "82" },
    };
    for (const auto& [name, command, specifier] : commands)
        for (const int node : { 0, 1, 5, 127 })
            QTest::addRow("%s %d", name, node)
                << command << node << QString::asprintf("000: %s %02X", specifier, unsigned(node));
}

void TestCopNms::commandSendsItsSpecifierAndTheNode()
{
    QFETCH(tCommand, command);
    QFETCH(int, node);
    QFETCH(QString, frame);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    cop_error = 1;
    QCOMPARE(command(BYTE(node)), 0);
    QCOMPARE(cop_error, 0);
    QCOMPARE(bus.written(), QStringList{ frame });
}

void TestCopNms::nodesAbove127AreRefusedAndNothingIsSent()
{
    QFETCH(tCommand, command);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    for (const int node : { 128, 129, 200, 255 }) {
        cop_error = 0;
        QCOMPARE(command(BYTE(node)), -90);
        QCOMPARE(cop_error, -90);
    }
    QCOMPARE(bus.written(), QStringList());
}

void TestCopNms::theNodeIsCheckedBeforeTheController()
{
    QFETCH(tCommand, command);
    CFakeBus bus;
    QCOMPARE(command(128), -90);
    QCOMPARE(command(127), -95);
    QCOMPARE(cop_error, -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(command(1), -9);
    QCOMPARE(cop_error, -9);
    QCOMPARE(bus.written(), QStringList());
}

void TestCopNms::aFailedWriteIsReportedAndALaterCommandWorks()
{
    QFETCH(tCommand, command);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.fail(CFakeBus::Write, ENETDOWN);
    QCOMPARE(command(1), -20);
    QCOMPARE(cop_error, -20);
    QCOMPARE(command(1), 0);
    QCOMPARE(bus.written().size(), 1);
}

void TestCopNms::noAnswerIsAwaited()
{
    QFETCH(tCommand, command);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 8), 0);
    const qint64 before = bus.milliseconds();
    QCOMPARE(command(1), 0);
    QVERIFY(bus.milliseconds() - before <= 1);
}

void TestCopNms::versionIsPinned()
{
    QCOMPARE(QByteArray(nmt_version()), QByteArray("Velmora CANopen master, cop_nms, 2026-11-21"));
}

QTEST_GUILESS_MAIN(TestCopNms)
#include "TestCopNms.moc"
