// velmora-sim: simulated CANopen devices behind an ASCII gateway.
// SPDX-License-Identifier: MIT
#include "Options.h"
#include "SignalQuit.h"
#include "SimulatedGateway.h"

#include <QCoreApplication>

#include <cstdio>

namespace
{

enum tExitStatus { exitDone = 0, exitPort = 1, exitOptions = 2 };

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

int run(QCoreApplication& application, const tOptions& options)
{
    CSimulatedNetwork network;
    for (const tNodeOption& node : options.nodes) {
        const QString trouble = network.add(node.nodeId, node.fileName);
        if (!trouble.isEmpty())
            return fail(trouble, exitOptions);
    }
    CSignalQuit quit;
    CSimulatedGateway gateway(network);
    gateway.setFaults(options.faults);
    if (options.verbose)
        gateway.setLog(print);
    const QString trouble = gateway.listen(options.port, options.address);
    if (!trouble.isEmpty())
        return fail(QStringLiteral("cannot serve port %1: %2").arg(options.port).arg(trouble), exitPort);
    for (const tNodeOption& node : options.nodes)
        print(QStringLiteral("node %1: %2 (%3 objects)")
                  .arg(QString::number(node.nodeId), node.fileName,
                       QString::number(network.node(node.nodeId)->objectCount()))
                  .toLocal8Bit());
    print(QStringLiteral("velmora-sim: gateway on %1 port %2")
              .arg(options.address.toString(), QString::number(gateway.port()))
              .toLocal8Bit());
    return application.exec();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const tOptions options = readOptions(application.arguments());
    if (!options.trouble.isEmpty())
        return fail(options.trouble, exitOptions);
    if (options.output.isEmpty())
        return run(application, options);
    std::fputs(options.output.toLocal8Bit().constData(), stdout);
    return exitDone;
}
