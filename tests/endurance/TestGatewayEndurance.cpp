// Endurance of the gateway client, against the simulator's gateway with faults and connections that are dropped.
//   build/dev/tests/endurance/TestGatewayEndurance 100000 [SEED]     the long run, about ten minutes
// A line is awaited for half a second: silences of 66 s are left to TestTcpDeadline, which moves the clock.
// SPDX-License-Identifier: MIT
#include "Endurance.h"
#include "Resources.h"
#include "SimulatorProcess.h"

#include <QCoreApplication>

namespace
{

constexpr int few = 500;
constexpr int lineTimeout = 500;

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
    for (int done = 0; done < run.operations; ++done) {
        resources.step(done);
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
