// The real program from its start to its end: an input plugin presses the keys.
// SPDX-License-Identifier: MIT
#include "ProgramRun.h"
#include "SimulatorProcess.h"

#include <QTest>

namespace
{

const QString frame = "CANopen Object Browser - Version 0.2 Build 61";
const QString dialog = "Initialize CAN Interface";

} // namespace

class TestProgramStart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithTheDialogAndEndsByTheExitKey();
    void closingTheFrameEndsTheProgram();
    void closingTheFrameDuringTheFirstDialogEndsTheProgram();
    void captionLosesTheVersionAfterAFile();
    void failedInterfaceShowsItsBoxAndTheProgramGoesOn();
    void initialisedInterfaceIsLeftAtTheEnd();
};

void TestProgramStart::startsWithTheDialogAndEndsByTheExitKey()
{
    const CProgramRun run({ { dialog, "Esc" }, { frame, "Ctrl+Q" } });
    QCOMPARE(run.windows, QStringList({ dialog, frame }));
    QVERIFY2(run.status == 0, run.output);
    QCOMPARE(run.settings(), QByteArray()); // nothing was stored
}

void TestProgramStart::closingTheFrameEndsTheProgram()
{
    const CProgramRun run({ { dialog, "Esc" }, { frame, "close" } });
    QCOMPARE(run.windows, QStringList({ dialog, frame }));
    QVERIFY2(run.status == 0, run.output);
}

void TestProgramStart::closingTheFrameDuringTheFirstDialogEndsTheProgram()
{
    // The dialog is still open; when it closes, the program ends.
    const CProgramRun run({ { frame, "close" }, { dialog, "Esc" } });
    QCOMPARE(run.windows, QStringList({ frame, dialog }));
    QVERIFY2(run.status == 0, run.output);
}

void TestProgramStart::captionLosesTheVersionAfterAFile()
{
    const QString sheet = VELMORA_SHARE "/velmora-demo.eds";
    const CProgramRun run({ { dialog, "Esc" },
                            { frame, "Ctrl+O" },
                            { "Open", '"' + sheet + '"' },
                            { "Open", "Return" },
                            { "CANopen Object Browser", "Ctrl+Q" } });
    QCOMPARE(run.windows, QStringList({ dialog, frame, "Open", "Open", "CANopen Object Browser" }));
    QVERIFY2(run.status == 0, run.output);
    QVERIFY(run.settings().contains("Recent%20File%20List\\File1=" + sheet.toUtf8()));
}

void TestProgramStart::failedInterfaceShowsItsBoxAndTheProgramGoesOn()
{
    const CProgramRun run({ { dialog, "\"nocan0\"" },
                            { dialog, "Return" },
                            { "Velmora - Initialize Interface", "Return" },
                            { frame, "Ctrl+Q" } });
    QCOMPARE(run.windows, QStringList({ dialog, dialog, "Velmora - Initialize Interface", frame }));
    QVERIFY2(run.status == 0, run.output);
    QCOMPARE(run.settings(), QByteArray());
}

void TestProgramStart::initialisedInterfaceIsLeftAtTheEnd()
{
    CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    const CProgramRun run({ { dialog, '"' + simulator.interface() + '"' }, { dialog, "Return" }, { frame, "Ctrl+Q" } });
    QVERIFY2(run.status == 0, run.output);
    QVERIFY(simulator.hasLogged("connected"));
    QVERIFY(simulator.hasLogged("disconnected"));
    QVERIFY(run.settings().contains(simulator.interface().toUtf8()));
}

QTEST_GUILESS_MAIN(TestProgramStart)
#include "TestProgramStart.moc"
