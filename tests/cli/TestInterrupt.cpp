// Ctrl-C, in processes of their own, since a noted signal stays noted.
// SPDX-License-Identifier: MIT
#include "console/Interrupt.h"

#include "Patience.h"

#include <QTest>

#include <csignal>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace
{

// The exit status of a child that runs the function; -1 when a signal ended it.
template <typename Function>
int childStatus(Function function)
{
    const pid_t child = ::fork();
    if (child == 0) {
        try {
            ::_exit(function());
        } catch (const tEnd& end) {
            ::_exit(end.status);
        }
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A wait for something that never comes. @return whether a signal ended it
bool waitForEver()
{
    return ::poll(nullptr, 0, patience) == -1;
}

} // namespace

class TestInterrupt : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void atFirstThereIsNone();
    void signalIsNoted_data();
    void signalIsNoted();
    void signalIsRepeatedForLaterWaits();
    void secondSignalAtOnceChangesNothing();
    void secondSignalLaterEndsTheProgram();
    void whatNoSignalEndsLastsForSeconds();
    void sleepEndsWithTheCommand();
    void sleepLastsUntilItsMoment();
    void endingAtOnceHasTheStatus();
    void messageTellsWhatWasDone();
};

void TestInterrupt::atFirstThereIsNone()
{
    QCOMPARE(childStatus([] {
                 noteInterrupts();
                 endWhenInterrupted();
                 return isInterrupted() ? 1 : 0;
             }),
             0);
}

void TestInterrupt::signalIsNoted_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void TestInterrupt::signalIsNoted()
{
    QFETCH(int, signal);
    QCOMPARE(childStatus([signal] {
                 noteInterrupts();
                 ::raise(signal);
                 if (!isInterrupted())
                     return 1;
                 endWhenInterrupted();
                 return 2;
             }),
             130);
}

void TestInterrupt::signalIsRepeatedForLaterWaits()
{
    QCOMPARE(childStatus([] {
                 noteInterrupts();
                 ::raise(SIGINT);
                 return waitForEver() && waitForEver() ? 0 : 1;
             }),
             0);
}

void TestInterrupt::secondSignalAtOnceChangesNothing()
{
    QCOMPARE(childStatus([] {
                 noteInterrupts();
                 ::raise(SIGINT);
                 ::raise(SIGTERM);
                 return 7;
             }),
             7);
}

void TestInterrupt::secondSignalLaterEndsTheProgram()
{
    QCOMPARE(childStatus([] {
                 noteInterrupts();
                 ::raise(SIGINT);
                 waitForEver();
                 ::raise(SIGINT);
                 return 7;
             }),
             130);
}

void TestInterrupt::whatNoSignalEndsLastsForSeconds()
{
    QCOMPARE(childStatus([] {
                 noteInterrupts();
                 ::raise(SIGINT);
                 while (waitForEver()) {
                 }
                 return 7;
             }),
             130);
}

void TestInterrupt::sleepEndsWithTheCommand()
{
    QCOMPARE(childStatus([] {
                 noteInterrupts();
                 const pid_t sleeper = ::getpid();
                 if (::fork() == 0) {
                     ::usleep(50000);
                     ::kill(sleeper, SIGINT);
                     ::_exit(0);
                 }
                 sleepUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds(patience));
                 return 1;
             }),
             130);
}

void TestInterrupt::sleepLastsUntilItsMoment()
{
    const auto moment = std::chrono::steady_clock::now() + 20ms;
    sleepUntil(moment);
    QVERIFY(std::chrono::steady_clock::now() >= moment);
    sleepUntil(moment); // has passed
}

void TestInterrupt::endingAtOnceHasTheStatus()
{
    QCOMPARE(childStatus([] {
                 endAtInterrupts();
                 ::raise(SIGINT);
                 return 1;
             }),
             130);
}

void TestInterrupt::messageTellsWhatWasDone()
{
    QString message;
    const auto run = [&message](tExitStatus status) {
        try {
            tellWhenInterrupted(
                [status] {
                    throw tEnd{ status, QStringLiteral("reason") };
                },
                [] { return QStringLiteral("1 of 2"); });
        } catch (const tEnd& end) {
            message = end.message;
        }
        return message;
    };
    QCOMPARE(run(exitInterrupted), QStringLiteral("interrupted: 1 of 2"));
    QCOMPARE(run(exitNetwork), QStringLiteral("reason"));
}

QTEST_APPLESS_MAIN(TestInterrupt)
#include "TestInterrupt.moc"
