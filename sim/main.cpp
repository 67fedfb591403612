// velmora-sim: simulated CANopen devices behind an ASCII gateway and on CAN.
// SPDX-License-Identifier: MIT
#include "can/CanDevice.h"
#include "Options.h"
#include "SignalQuit.h"
#include "gateway/SimulatedGateway.h"

#include <QCoreApplication>

#include <cstdio>
#include <memory>

namespace
{

enum tExitStatus { exitDone = 0, exitFrontEnd = 1, exitOptions = 2 };

// Each line at once, so that a script can follow the log.
void print(const QByteArray& line)
{
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int fail(const QString& trouble, tExitStatus status)
{
    std::fprintf(stderr, "velmora-sim: %s\n", trouble.toLocal8Bit().constData());
    if (status == exitOptions)
        std::fputs("Try 'velmora-sim --help'.\n", stderr);
    return status;
}

QString addNodes(CSimulatedNetwork& network, const tOptions& options)
{
    for (const tNodeOption& node : options.nodes) {
        QString trouble = network.add(node.nodeId, node.fileName);
        if (!trouble.isEmpty())
            return trouble;
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
    const QString trouble = gateway.listen(*options.port, options.address);
    return trouble.isEmpty() ? trouble : QStringLiteral("cannot serve port %1: %2").arg(*options.port).arg(trouble);
}

QString serveCan(std::unique_ptr<CCanDevice>& can, CSimulatedNetwork& network, const tOptions& options)
{
    if (options.canInterface.isEmpty())
        return QString();
    can = std::make_unique<CCanDevice>(network);
    can->setFaults(options.faults);
    if (options.verbose)
        can->setLog(print);
    QObject::connect(can.get(), &CCanDevice::gone, qApp, [name = options.canInterface] {
        QCoreApplication::exit(fail(QStringLiteral("%1 is gone").arg(name), exitFrontEnd));
    });
    const QString trouble = can->open(options.canInterface);
    return trouble.isEmpty() ? trouble : QStringLiteral("cannot use %1: %2").arg(options.canInterface, trouble);
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
    QString trouble = addNodes(network, options);
    if (!trouble.isEmpty())
        return fail(trouble, exitOptions);
    CSignalQuit quit;
    CSimulatedGateway gateway(network);
    std::unique_ptr<CCanDevice> can;
    trouble = serveGateway(gateway, options);
    if (trouble.isEmpty())
        trouble = serveCan(can, network, options);
    if (!trouble.isEmpty())
        return fail(trouble, exitFrontEnd);
    printStart(network, gateway, options);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const tOptions options = readOptions(application.arguments());
    if (!options.trouble.isEmpty())
        return fail(options.trouble, exitOptions);
    if (options.output.isEmpty())
        return run(options);
    std::fputs(options.output.toLocal8Bit().constData(), stdout);
    return exitDone;
}
