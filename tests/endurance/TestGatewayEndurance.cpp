// Endurance of the gateway client, against the simulator's gateway with faults and connections that are dropped.
//   build/dev/tests/endurance/TestGatewayEndurance 100000 [SEED [SILENCES]]     the long run, about ten minutes
// A line is awaited for half a second, SILENCES times for 66 s, none at first: TestTcpDeadline moves the clock instead.
// SPDX-License-Identifier: MIT
#include "Endurance.h"
#include "Resources.h"
#include "SimulatorProcess.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <climits>

namespace
{

constexpr int few = 500;
constexpr int lineTimeout = 500;
constexpr int silentTimeout = 66000; // milliseconds, that of the client
constexpr WORD silentObject = 0x2000;

const QStringList faults = {
    "silence@2000", "sequence@2001", "delay=20@2002", "double@2003",   "abort=0x06060000@2004",
    "drop@2005",    "garbage@2006",  "bytewise@2007", "overlong@2008", "error=101@2009",
};

// 4 is an abort, -600 - n the error n of a gateway: garbage, too, may read as any number.
bool isStated(int code)
{
    static const std::set<int> codes{ 4, -30, -70, -98, -793 };
    return codes.count(code) != 0 || code <= -600;
}

bool connect(CCANopenAccess& access, unsigned short port)
{
    _top_param address = { 0x7F000001, port, { 1, 1, 255 } };
    return access.initialize(libraryGateway, -1, &address, 0) && access.setLineTimeout(lineTimeout, nullptr);
}

// The whole wait for an object that is not answered.
void beSilent(CCANopenAccess& access, endurance::COperations& operations)
{
    BYTE data[4];
    short length = 0;
    QElapsedTimer clock;
    access.setLineTimeout(silentTimeout, nullptr);
    clock.start();
    access.read(endurance::node, silentObject, 0, &length, data, sizeof data);
    const qint64 waited = clock.elapsed();
    access.setLineTimeout(lineTimeout, nullptr);
    std::printf("silent for %.3f s\n", static_cast<double>(waited) / 1000);
    if (access.lastAnswer() != CCANopenAccess::answerNone || waited < silentTimeout)
        operations.problem("the silent object was answered");
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const endurance::tRun run(argc, argv, few);
    QStringList options;
    for (const QString& fault : faults)
        options += { "--fault", fault };
    CSimulatorProcess simulator(options, CSimulatorProcess::silent);
    if (simulator.port() == 0)
        qFatal("no simulator: %s", simulator.log().constData());
    endurance::COperations operations(run.seed, { 0x2000, 0x2001 },
                                      { 0x2002, 0x2003, 0x2004, 0x2005, 0x2006, 0x2007, 0x2008, 0x2009 }, isStated);
    endurance::CResources resources(run.operations);
    CCANopenAccess access;
    if (!connect(access, simulator.port()))
        qFatal("no connection");
    int connections = 1;
    const int untilSilence = run.silences > 0 ? run.operations / run.silences : INT_MAX;
    for (int done = 0; done < run.operations; ++done) {
        resources.step(done);
        if (done % untilSilence == untilSilence - 1)
            beSilent(access, operations);
        if (operations.step(access) && operations.chance(1000) != 0)
            continue;
        ++connections;
        if (!access.terminate() || !connect(access, simulator.port())) {
            operations.problem(QString("no new connection: %1").arg(access.getLastError()));
            break;
        }
    }
    std::printf("%d connections\n", connections);
    return resources.finish(operations.finish(run.operations), "operations", run.operations);
}
