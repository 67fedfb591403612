// Endurance of the CANopen master, against the simulator on a CAN interface that goes down and comes up again.
//   VELMORA_VCAN=uml scripts/vcan/with-vcan build/dev/tests/endurance/TestCanEndurance 100000 [SEED]     the long run
// SPDX-License-Identifier: MIT
#include "Endurance.h"
#include "Resources.h"
#include "SimulatorProcess.h"
#include "VcanInterface.h"

#include <QCoreApplication>

namespace
{

constexpr int few = 2000;
constexpr int outage = 200; // operations from the time when the interface goes down to the next one
constexpr int downFor = 5;  // operations of these

const QStringList faults = {
    "silence@2000", "stall=2@2008", "double@2002",   "abort=0x06060000@2003", "command@2004",
    "short@2005",   "foreign@2006", "flood=50@2007", "delay=20@2009",
};

// 4 is an abort.
bool isStated(int code)
{
    static const std::set<int> codes{ 4, -20, -30, -40, -50, -60, -70, -98 };
    return codes.count(code) != 0;
}

bool open(CCANopenAccess& access, const char* interface)
{
    _can_param param = { interface, 29, 3, 1 };
    return access.initialize(librarySocketCAN, -1, &param, 0);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const endurance::tRun run(argc, argv, few);
    const CVcanInterface interface;
    if (!interface.exists())
        qFatal("%s", CVcanInterface::problem());
    QStringList options{ "--can", interface.name() };
    for (const QString& fault : faults)
        options += { "--fault", fault };
    CSimulatorProcess simulator(options, CSimulatorProcess::silent);
    if (!simulator.hasLogged(QString("velmora-sim: CAN on ") + interface.name()))
        qFatal("no simulator: %s", simulator.log().constData());
    endurance::COperations operations(run.seed, { 0x2000, 0x2008 },
                                      { 0x2002, 0x2003, 0x2004, 0x2005, 0x2006, 0x2007, 0x2009 }, isStated);
    endurance::CResources resources(run.operations);
    CCANopenAccess access;
    if (!open(access, interface.name()))
        qFatal("cannot open the interface");
    int outages = 0;
    for (int done = 0; done < run.operations; ++done) {
        resources.step(done);
        operations.step(access);
        const int place = done % outage;
        if (place == outage - downFor - 1 && !interface.down())
            operations.problem("the interface does not go down");
        if (place != outage - 1)
            continue;
        ++outages;
        if (!interface.up())
            operations.problem("the interface does not come up");
        if (outages % 2 == 0 && (!access.terminate() || !open(access, interface.name())))
            operations.problem(QString("cannot open again: %1").arg(access.getLastError()));
    }
    std::printf("%d outages\n", outages);
    return resources.finish(operations.finish(run.operations), "operations", run.operations);
}
