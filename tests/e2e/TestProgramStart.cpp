// The real program from its start to its end: a hand that it loads as an input plugin presses the keys.
// SPDX-License-Identifier: MIT
#include "SimulatorProcess.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

namespace
{

const QString frame = "CANopen Object Browser - Version 0.2 Build 61";
const QString dialog = "Initialize CAN Interface";

struct tEnd {
    int status = -1;     // -1: it did not end by itself
    QStringList windows; // the windows in which something was done
    QString output;
};

} // namespace

class TestProgramStart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_home.emplace(); }

    void startsWithTheDialogAndEndsByTheExitKey();
    void closingTheFrameEndsTheProgram();
    void closingTheFrameDuringTheFirstDialogEndsTheProgram();
    void captionLosesTheVersionAfterAFile();
    void failedInterfaceShowsItsBoxAndTheProgramGoesOn();
    void initialisedInterfaceIsLeftAtTheEnd();

private:
    using tStep = std::pair<QString, QString>; // window and action, see Hand.cpp
    tEnd run(const QList<tStep>& steps);
    QString settingsFile() const { return m_home->filePath("config/Brask Works.conf"); }

    std::optional<QTemporaryDir> m_home;
};

tEnd TestProgramStart::run(const QList<tStep>& steps)
{
    QFile file(m_home->filePath("steps"));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("no steps");
    for (const auto& [window, action] : steps)
        file.write((window + '\t' + action + '\n').toUtf8());
    file.close();

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("QT_PLUGIN_PATH", VELMORA_TEST_PLUGINS);
    environment.insert("QT_QPA_GENERIC_PLUGINS", "velmora-test-hand");
    environment.insert("VELMORA_TEST_STEPS", file.fileName());
    environment.insert("HOME", m_home->path());
    environment.insert("XDG_CONFIG_HOME", m_home->filePath("config"));
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(VELMORA_PROGRAM, {});
    tEnd end;
    if (program.waitForFinished(20000) && program.exitStatus() == QProcess::NormalExit)
        end.status = program.exitCode();
    else
        program.kill();
    program.waitForFinished();
    end.windows = QString::fromUtf8(program.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    end.output = QString::fromUtf8(program.readAllStandardError());
    return end;
}

void TestProgramStart::startsWithTheDialogAndEndsByTheExitKey()
{
    const tEnd end = run({ { dialog, "Esc" }, { frame, "Ctrl+Q" } });
    QCOMPARE(end.windows, QStringList({ dialog, frame }));
    QVERIFY2(end.status == 0, qPrintable(end.output));
    QVERIFY(!QFile::exists(settingsFile())); // nothing was worth keeping
}

void TestProgramStart::closingTheFrameEndsTheProgram()
{
    const tEnd end = run({ { dialog, "Esc" }, { frame, "close" } });
    QCOMPARE(end.windows, QStringList({ dialog, frame }));
    QVERIFY2(end.status == 0, qPrintable(end.output));
}

void TestProgramStart::closingTheFrameDuringTheFirstDialogEndsTheProgram()
{
    // The dialog is still there; behind it there is nothing more to wait for.
    const tEnd end = run({ { frame, "close" }, { dialog, "Esc" } });
    QCOMPARE(end.windows, QStringList({ frame, dialog }));
    QVERIFY2(end.status == 0, qPrintable(end.output));
}

void TestProgramStart::captionLosesTheVersionAfterAFile()
{
    const QString sheet = VELMORA_SHARE "/velmora-demo.eds";
    const tEnd end = run({ { dialog, "Esc" },
                           { frame, "Ctrl+O" },
                           { "Open", '"' + sheet + '"' },
                           { "Open", "Return" },
                           { "CANopen Object Browser", "Ctrl+Q" } });
    QCOMPARE(end.windows, QStringList({ dialog, frame, "Open", "Open", "CANopen Object Browser" }));
    QVERIFY2(end.status == 0, qPrintable(end.output));
    QFile stored(settingsFile());
    QVERIFY(stored.open(QIODevice::ReadOnly));
    QVERIFY(stored.readAll().contains("Recent%20File%20List\\File1=" + sheet.toUtf8()));
}

void TestProgramStart::failedInterfaceShowsItsBoxAndTheProgramGoesOn()
{
    const tEnd end = run({ { dialog, "\"nocan0\"" },
                           { dialog, "Return" },
                           { "Velmora - Initialize Interface", "Return" },
                           { frame, "Ctrl+Q" } });
    QCOMPARE(end.windows, QStringList({ dialog, dialog, "Velmora - Initialize Interface", frame }));
    QVERIFY2(end.status == 0, qPrintable(end.output));
    QVERIFY(!QFile::exists(settingsFile()));
}

void TestProgramStart::initialisedInterfaceIsLeftAtTheEnd()
{
    CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    const tEnd end = run({ { dialog, '"' + simulator.interface() + '"' }, { dialog, "Return" }, { frame, "Ctrl+Q" } });
    QVERIFY2(end.status == 0, qPrintable(end.output));
    QVERIFY(simulator.hasLogged("connected"));
    QVERIFY(simulator.hasLogged("disconnected"));
    QFile stored(settingsFile());
    QVERIFY(stored.open(QIODevice::ReadOnly));
    QVERIFY(stored.readAll().contains(simulator.interface().toUtf8()));
}

QTEST_GUILESS_MAIN(TestProgramStart)
#include "TestProgramStart.moc"
