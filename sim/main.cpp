// velmora-sim: simulated CANopen devices behind an ASCII gateway and on CAN.
// SPDX-License-Identifier: MIT
#include "Options.h"
#include "SignalQuit.h"
#include "can/CanDevice.h"
#include "dic/InstalledSheet.h"
#include "gateway/SimulatedGateway.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cstdio>
#include <memory>

namespace
{

enum tExitStatus { exitDone = 0, exitFrontEnd = 1, exitOptions = 2 };

// Each line is flushed, so that a script can follow the log.
void print(const QByteArray& line)
{
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

void printWithTime(const QByteArray& line)
{
    print(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz ")).toLatin1() + line);
}

tLog printer(const tOptions& options)
{
    return options.timeStamps ? printWithTime : print;
}

int fail(const QString& error, tExitStatus status)
{
    std::fprintf(stderr, "velmora-sim: %s\n", error.toLocal8Bit().constData());
    return status;
}

int failWithHint(const QString& error)
{
    const int status = fail(error, exitOptions);
    std::fputs("Try 'velmora-sim --help'.\n", stderr);
    return status;
}

// The exit status; `exitDone` when all devices are there.
int addNodes(CSimulatedNetwork& network, const tOptions& options)
{
    for (const tNodeOption& node : options.nodes) {
        bool badSheet = false;
        const QString error = network.add(node.nodeId, node.fileName, &badSheet);
        if (!error.isEmpty())
            return badSheet ? fail(error, exitOptions) : failWithHint(error);
    }
    return exitDone;
}

QString serveGateway(CSimulatedGateway& gateway, const tOptions& options)
{
    if (!options.port)
        return QString();
    gateway.setFaults(options.faults);
    if (options.verbose)
        gateway.setLog(printer(options));
    const QString error = gateway.listen(*options.port, options.address);
    return error.isEmpty() ? error : QStringLiteral("cannot serve port %1: %2").arg(*options.port).arg(error);
}

QString serveCan(std::unique_ptr<CCanDevice>& can, CSimulatedNetwork& network, const tOptions& options)
{
    if (options.canInterface.isEmpty())
        return QString();
    can = std::make_unique<CCanDevice>(network);
    can->setFaults(options.faults);
    if (options.verbose)
        can->setLog(printer(options));
    QObject::connect(can.get(), &CCanDevice::interfaceRemoved, qApp, [name = options.canInterface] {
        QCoreApplication::exit(fail(QStringLiteral("%1 was removed").arg(name), exitFrontEnd));
    });
    const QString error = can->open(options.canInterface);
    return error.isEmpty() ? error : QStringLiteral("cannot use %1: %2").arg(options.canInterface, error);
}

void printStart(const CSimulatedNetwork& network, const CSimulatedGateway& gateway, const tOptions& options)
{
    const tLog log = printer(options);
    for (const tNodeOption& node : options.nodes)
        log(QStringLiteral("node %1: %2 (%3 objects)")
                .arg(QString::number(node.nodeId), node.fileName,
                     QString::number(network.node(node.nodeId)->objectCount()))
                .toLocal8Bit());
    if (options.port)
        log(QStringLiteral("velmora-sim: gateway on %1 port %2")
                .arg(options.address.toString(), QString::number(gateway.port()))
                .toLocal8Bit());
    if (!options.canInterface.isEmpty())
        log("velmora-sim: CAN on " + options.canInterface.toLocal8Bit());
}

int run(tOptions options)
{
    for (tNodeOption& node : options.nodes)
        node.fileName = findSheet(node.fileName);
    CSimulatedNetwork network;
    if (const int status = addNodes(network, options))
        return status;
    CSignalQuit quit;
    CSimulatedGateway gateway(network);
    std::unique_ptr<CCanDevice> can;
    QString error = serveGateway(gateway, options);
    if (error.isEmpty())
        error = serveCan(can, network, options);
    if (!error.isEmpty())
        return fail(error, exitFrontEnd);
    printStart(network, gateway, options);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const tOptions options = readOptions(QCoreApplication::arguments());
    if (!options.error.isEmpty())
        return failWithHint(options.error);
    if (options.output.isEmpty())
        return run(options);
    std::fputs(options.output.toLocal8Bit().constData(), stdout);
    return exitDone;
}
