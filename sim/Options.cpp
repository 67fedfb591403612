// The command line of the simulator.
// SPDX-License-Identifier: MIT
#include "Options.h"

#include "NumberText.h"
#include "Product.h"
#include "SimulatedNode.h"

#include <QCommandLineParser>

namespace
{

const char description[] = "Simulates CANopen devices behind an ASCII gateway.\n"
                           "\n"
                           "  velmora-sim --gateway 60000 --node 5=velmora-demo.eds";

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
    if (const auto fault = readFault(text, &message))
        options.faults += *fault;
    return message;
}

// An option with a value: how it is read, and whether one has to be there.
struct tOptionRow {
    const char* name;
    const char* value;
    const char* what;
    bool needed;
    QString (*read)(const QString& text, tOptions& options);
};

constexpr tOptionRow optionRows[] = {
    { "gateway", "[ADDRESS:]PORT", "Serve the gateway on this port; 0 for any free one. The address is 127.0.0.1.",
      true, readGateway },
    { "node", "ID=FILE", "Simulate the device of this data sheet as node ID (1 to 127). May be repeated.", true,
      readNode },
    { "fault", "KIND[@INDEX[:SUB]]",
      "Misbehave in SDO commands, or only for one object or entry (hexadecimal). May be repeated; the first that fits "
      "counts. The kinds are listed below.",
      false, readFaultOption },
};

void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QLatin1String(description));
    for (const tOptionRow& row : optionRows)
        parser.addOption({ QLatin1String(row.name), QLatin1String(row.what), QLatin1String(row.value) });
    parser.addOption({ QStringLiteral("v"), QStringLiteral("Log every command and its answer on standard output.") });
    parser.addHelpOption();
    parser.addOption({ QStringLiteral("version"), QStringLiteral("Displays version information.") });
}

QString readValues(const QCommandLineParser& parser, tOptions& options)
{
    if (!parser.positionalArguments().isEmpty())
        return QStringLiteral("unexpected argument: %1").arg(parser.positionalArguments().first());
    for (const tOptionRow& row : optionRows) {
        const QStringList values = parser.values(QLatin1String(row.name));
        if (row.needed && values.isEmpty())
            return QStringLiteral("--%1 %2 is missing").arg(QLatin1String(row.name), QLatin1String(row.value));
        for (const QString& value : values) {
            QString trouble = row.read(value, options);
            if (!trouble.isEmpty())
                return trouble;
        }
    }
    return QString();
}

} // namespace

tOptions readOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    tOptions options;
    if (!parser.parse(arguments))
        options.trouble = parser.errorText();
    else if (parser.isSet(QStringLiteral("help")))
        options.output = parser.helpText() + QStringLiteral("\nFaults (KIND or KIND=NUMBER):\n%1\n").arg(faultHelp());
    else if (parser.isSet(QStringLiteral("version")))
        options.output = QStringLiteral("velmora-sim %1\n").arg(QLatin1String(product::version));
    else
        options.trouble = readValues(parser, options);
    options.verbose = parser.isSet(QStringLiteral("v"));
    return options;
}
