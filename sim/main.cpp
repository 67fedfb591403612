// velmora-sim: simulated CANopen devices behind an ASCII gateway and on CAN.
// SPDX-License-Identifier: MIT
#include "Options.h"
#include "SignalQuit.h"
#include "can/CanDevice.h"
#include "gateway/SimulatedGateway.h"

#include <QCoreApplication>

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

int fail(const QString& error, tExitStatus status)
{
    std::fprintf(stderr, "velmora-sim: %s\n", error.toLocal8Bit().constData());
    if (status == exitOptions)
        std::fputs("Try 'velmora-sim --help'.\n", stderr);
    return status;
}

QString addNodes(CSimulatedNetwork& network, const tOptions& options)
{
    for (const tNodeOption& node : options.nodes) {
        QString error = network.add(node.nodeId, node.fileName);
        if (!error.isEmpty())
            return error;
    }
    return QString();
}

QString serveGateway(CSimulatedGateway& gateway, const tOptions& options)
{
    if (!options.port)
        return QString();
    gateway.setFaults(options.faults);
    if (options.verbose)
        gateway.setLog(print);
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
        can->setLog(print);
    QObject::connect(can.get(), &CCanDevice::interfaceRemoved, qApp, [name = options.canInterface] {
        QCoreApplication::exit(fail(QStringLiteral("%1 was removed").arg(name), exitFrontEnd));
    });
    const QString error = can->open(options.canInterface);
    return error.isEmpty() ? error : QStringLiteral("cannot use %1: %2").arg(options.canInterface, error);
}

void printStart(const CSimulatedNetwork& network, const CSimulatedGateway& gateway, const tOptions& options)
{
    for (const tNodeOption& node : options.nodes)
        print(QStringLiteral("node %1: %2 (%3 objects)")
                  .arg(QString::number(node.nodeId), node.fileName,
                       QString::number(network.node(node.nodeId)->objectCount()))
                  .toLocal8Bit());
    if (options.port)
        print(QStringLiteral("velmora-sim: gateway on %1 port %2")
                  .arg(options.address.toString(), QString::number(gateway.port()))
                  .toLocal8Bit());
    if (!options.canInterface.isEmpty())
        print("velmora-sim: CAN on " + options.canInterface.toLocal8Bit());
}

int run(const tOptions& options)
{
    CSimulatedNetwork network;
    QString error = addNodes(network, options);
    if (!error.isEmpty())
        return fail(error, exitOptions);
    CSignalQuit quit;
    CSimulatedGateway gateway(network);
    std::unique_ptr<CCanDevice> can;
    error = serveGateway(gateway, options);
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
    const tOptions options = readOptions(application.arguments());
    if (!options.error.isEmpty())
        return fail(options.error, exitOptions);
    if (options.output.isEmpty())
        return run(options);
    std::fputs(options.output.toLocal8Bit().constData(), stdout);
    return exitDone;
}
