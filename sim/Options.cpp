// The command line of the simulator.
// SPDX-License-Identifier: MIT
#include "Options.h"

#include "base/Product.h"
#include "can/CanFaults.h"
#include "dic/NumberText.h"
#include "device/SimulatedNode.h"
#include "gateway/GatewayFaults.h"

#include <QCommandLineParser>

namespace
{

const char description[] = "Simulates CANopen devices behind an ASCII gateway, on a CAN interface, or both.\n"
                           "\n"
                           "  velmora-sim --gateway 60000 --node 5=velmora-demo.eds\n"
                           "  velmora-sim --can vcan0 --node 5=velmora-demo.eds -v";

// The kinds of both front-ends, each once.
QList<tFaultKind> allFaultKinds()
{
    QList<tFaultKind> kinds(gatewayFaultKinds().begin(), gatewayFaultKinds().end());
    for (const tFaultKind& kind : canFaultKinds())
        if (!kinds.contains(kind))
            kinds += kind;
    return kinds;
}

// The kinds under a heading for each set of front-ends that know them.
QString helpOnFaults()
{
    constexpr struct {
        const char* heading;
        bool gateway;
        bool can;
    } groups[] = {
        { "on the gateway and on CAN", true, true },
        { "on the gateway", true, false },
        { "on CAN", false, true },
    };
    QStringList parts;
    for (const auto& group : groups) {
        QList<tFaultKind> kinds = allFaultKinds();
        kinds.removeIf([&group](const tFaultKind& kind) {
            return contains(gatewayFaultKinds(), kind) != group.gateway || contains(canFaultKinds(), kind) != group.can;
        });
        parts += faultHelp(QLatin1String(group.heading), kinds);
    }
    return parts.join(u'\n');
}

// gateway = [ address ":" ] port
QString readGateway(const QString& text, tOptions& options)
{
    const qsizetype colon = text.lastIndexOf(u':');
    const auto port = readNumber(text.mid(colon + 1));
    if (!port || port->negative || port->bits > 0xFFFF)
        return QStringLiteral("--gateway %1: the port is not in 0 to 65535").arg(text);
    if (colon >= 0 && !options.address.setAddress(text.left(colon)))
        return QStringLiteral("--gateway %1: no such address").arg(text);
    options.port = static_cast<quint16>(port->bits);
    return QString();
}

QString readCan(const QString& text, tOptions& options)
{
    if (text.isEmpty())
        return QStringLiteral("--can: the interface is missing");
    options.canInterface = text;
    return QString();
}

// node = node-id "=" file
QString readNode(const QString& text, tOptions& options)
{
    const qsizetype equals = text.indexOf(u'=');
    const auto nodeId = readNumber(text.left(equals));
    if (equals < 0 || equals + 1 == text.size())
        return QStringLiteral("--node %1: expected ID=FILE").arg(text);
    if (!nodeId || nodeId->negative || nodeId->bits < 1 || nodeId->bits > lastNodeId)
        return QStringLiteral("--node %1: the node-id is not in 1 to %2").arg(text, QString::number(lastNodeId));
    options.nodes += tNodeOption{ static_cast<unsigned>(nodeId->bits), text.mid(equals + 1) };
    return QString();
}

QString readFaultOption(const QString& text, tOptions& options)
{
    QString message;
    if (const auto fault = readFault(text, allFaultKinds(), &message))
        options.faults += *fault;
    return message;
}

// An option with a value, and how it is read.
struct tOptionRow {
    const char* name;
    const char* value;
    const char* what;
    QString (*read)(const QString& text, tOptions& options);
};

constexpr tOptionRow optionRows[] = {
    { "gateway", "[ADDRESS:]PORT", "Serve the gateway on this port; 0 for any free one. The address is 127.0.0.1.",
      readGateway },
    { "can", "INTERFACE", "Take part in the traffic of this CAN interface. Without --gateway no gateway is served.",
      readCan },
    { "node", "ID=FILE",
      "Simulate the device of this data sheet as node ID (1 to 127). May be repeated. The name of an installed sheet, "
      "such as velmora-demo.eds, needs no folder.",
      readNode },
    { "fault", "KIND[=NUMBER][@INDEX[:SUB]]",
      "Misbehave in SDO transfers, or only for one object or entry (hexadecimal). May be repeated; the first that fits "
      "counts. The kinds are listed below.",
      readFaultOption },
};

void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QLatin1String(description));
    for (const tOptionRow& row : optionRows)
        parser.addOption({ QLatin1String(row.name), QLatin1String(row.what), QLatin1String(row.value) });
    parser.addOption(
        { QStringLiteral("v"),
          QStringLiteral(
              "Log gateway commands and answers, SDO transfers, and NMT commands on CAN, on standard output.") });
    parser.addOption({ QStringLiteral("time-stamps"),
                       QStringLiteral("Begin each line on standard output with date and time, to the millisecond.") });
    parser.addHelpOption();
    parser.addOption({ QStringLiteral("version"), QStringLiteral("Displays version information.") });
}

// What is missing among the options; empty when nothing is.
QString missing(const tOptions& options)
{
    const bool can = !options.canInterface.isEmpty();
    if (!options.port && !can)
        return QStringLiteral("--gateway [ADDRESS:]PORT or --can INTERFACE is missing");
    if (options.nodes.isEmpty())
        return QStringLiteral("--node ID=FILE is missing");
    for (const tFault& fault : options.faults) {
        const bool possible = (options.port && contains(gatewayFaultKinds(), fault.kind)) ||
                              (can && contains(canFaultKinds(), fault.kind));
        if (!possible)
            return QStringLiteral("fault \"%1\": not without --%2")
                .arg(QLatin1String(fault.kind.name), QLatin1String(can ? "gateway" : "can"));
    }
    return QString();
}

QString readValues(const QCommandLineParser& parser, tOptions& options)
{
    if (!parser.positionalArguments().isEmpty())
        return QStringLiteral("unexpected argument: %1").arg(parser.positionalArguments().first());
    for (const tOptionRow& row : optionRows) {
        for (const QString& value : parser.values(QLatin1String(row.name))) {
            QString error = row.read(value, options);
            if (!error.isEmpty())
                return error;
        }
    }
    return missing(options);
}

} // namespace

tOptions readOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    tOptions options;
    if (!parser.parse(arguments))
        options.error = parser.errorText();
    else if (parser.isSet(QStringLiteral("help")))
        options.output = parser.helpText() + QStringLiteral("\nFaults (KIND or KIND=NUMBER)\n%1\n").arg(helpOnFaults());
    else if (parser.isSet(QStringLiteral("version")))
        options.output = QStringLiteral("velmora-sim %1\n").arg(QLatin1String(product::version));
    else
        options.error = readValues(parser, options);
    options.verbose = parser.isSet(QStringLiteral("v"));
    options.timeStamps = parser.isSet(QStringLiteral("time-stamps"));
    return options;
}
