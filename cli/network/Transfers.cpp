// Reading and writing parameters of one device, as texts.
// SPDX-License-Identifier: MIT
#include "network/Transfers.h"

#include "console/Interrupt.h"
#include "dic/ValueTypes.h"
#include "sheets/Csv.h"
#include "sheets/EntryText.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>

namespace
{

using tEntry = CCANopenObjectEntry;

// A parameter with its type, and what was read or is to be written.
struct tTyped {
    tParameterName name;
    int type;
    QByteArray bytes;
};

tTyped typedParameter(const QString& text, const CCANopen* sheet, const tTransferOptions& options)
{
    const tParameterName name = readParameterName(text, sheet);
    const int known = name.entry != nullptr ? int{ name.entry->getDataType() } : int{ tEntry::typeDomain };
    return { name, options.type.value_or(known), {} };
}

QString textOf(const tParameterName& name)
{
    return parameterText(name.index, name.subIndex);
}

bool isNumber(int type)
{
    return isNumeric(valueType(type));
}

QJsonObject jsonOf(const tTyped& parameter, valueFormats::TDisplayMode mode)
{
    QJsonObject object{ { QStringLiteral("index"), indexText(parameter.name.index) },
                        { QStringLiteral("subindex"), parameter.name.subIndex },
                        { QStringLiteral("type"), tEntry::getDataTypeByIndex(tEntry::TEntryType(parameter.type)) },
                        { QStringLiteral("value"), typedValue::textOf(parameter.type, parameter.bytes, mode) },
                        { QStringLiteral("bytes"), QString::fromLatin1(parameter.bytes.toHex(' ').toUpper()) } };
    if (parameter.name.entry != nullptr)
        object.insert(QStringLiteral("name"), parameter.name.entry->getName());
    return object;
}

// Shows values, one a line, or all together at the end.
class CValues
{
public:
    CValues(const tTransferOptions& options, CConsole& console) : m_options(options), m_console(console) {}

    void add(const tTyped& parameter)
    {
        if (m_options.format == formatJson)
            m_json += jsonOf(parameter, m_options.mode);
        else
            m_console.line(typedValue::textOf(parameter.type, parameter.bytes, m_options.mode));
    }
    void end()
    {
        if (m_options.format == formatJson)
            m_console.write(QJsonDocument(m_json).toJson());
    }

private:
    const tTransferOptions& m_options;
    CConsole& m_console;
    QJsonArray m_json;
};

void warnOfSize(CConsole& console, const tTyped& parameter)
{
    console.message(QStringLiteral("%1: warning: the device has %2 bytes, which is no %3")
                        .arg(textOf(parameter.name), QString::number(parameter.bytes.size()),
                             tEntry::getDataTypeByIndex(tEntry::TEntryType(parameter.type))));
}

void report(CConsole& console, const tParameterName& name, const tFailure& failure)
{
    console.message(QStringLiteral("%1: %2").arg(textOf(name), failure.text));
}

QList<tTyped> typedParameters(const tTransferOptions& options, const CCANopen* sheet, int step)
{
    QList<tTyped> parameters;
    for (qsizetype place = 0; place < options.arguments.size(); place += step)
        parameters += typedParameter(options.arguments[place], sheet, options);
    return parameters;
}

// One row of a series; the worst exit status of its readings.
int readRow(CNetwork& network, const tTransferOptions& options, QList<tTyped>& parameters, CConsole& console)
{
    QStringList row{ QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs) };
    int status = exitDone;
    for (tTyped& parameter : parameters) {
        const tReadResult result =
            network.read(static_cast<BYTE>(options.node), parameter.name.index, parameter.name.subIndex);
        row += result.failure ? QString() : typedValue::textOf(parameter.type, result.bytes, options.mode);
        if (result.failure) {
            report(console, parameter.name, *result.failure);
            status = std::max<int>(status, result.failure->status);
        } else if (typedValue::sizeDiffers(parameter.type, result.bytes.size())) {
            parameter.bytes = result.bytes;
            warnOfSize(console, parameter);
            status = std::max<int>(status, exitDifference);
        }
    }
    console.write(csvLine(row));
    console.flush();
    return status;
}

} // namespace

int readParameters(const tTransferOptions& options, const CCANopen* sheet, CConsole& console)
{
    auto parameters = typedParameters(options, sheet, 1);
    CNetwork network(options.network, console);
    CValues values(options, console);
    int status = exitDone;
    for (tTyped& parameter : parameters) {
        const auto [bytes, failure] =
            network.read(static_cast<BYTE>(options.node), parameter.name.index, parameter.name.subIndex);
        if (failure) {
            report(console, parameter.name, *failure);
            status = failure->status;
            if (status == exitNetwork)
                break;
            continue;
        }
        parameter.bytes = bytes;
        values.add(parameter);
        if (typedValue::sizeDiffers(parameter.type, bytes.size())) {
            warnOfSize(console, parameter);
            status = std::max<int>(status, exitDifference);
        }
    }
    values.end();
    return status;
}

int readSeries(const tTransferOptions& options, const CCANopen* sheet, CConsole& console)
{
    auto parameters = typedParameters(options, sheet, 1);
    CNetwork network(options.network, console);
    QStringList header{ QStringLiteral("time") };
    for (const tTyped& parameter : parameters)
        header += textOf(parameter.name);
    console.write(csvLine(header));
    int status = exitDone;
    auto next = std::chrono::steady_clock::now();
    for (int row = 0; row < options.repeat || options.repeat == 0; ++row) {
        sleepUntil(next);
        next += std::chrono::milliseconds(std::max(options.every, 0));
        status = std::max(status, readRow(network, options, parameters, console));
    }
    return status;
}

int writeParameters(const tTransferOptions& options, const CCANopen* sheet, CConsole& console)
{
    if (options.arguments.size() % 2 != 0)
        throw tEnd{ exitUsage, QStringLiteral("the value of %1 is missing").arg(options.arguments.last()) };
    auto parameters = typedParameters(options, sheet, 2);
    for (qsizetype place = 0; place < parameters.size(); ++place) {
        tTyped& parameter = parameters[place];
        if (!options.type && parameter.name.entry == nullptr)
            throw tEnd{ exitUsage, QStringLiteral("%1: its type is not known; --type or a data sheet (-s) tells it")
                                       .arg(textOf(parameter.name)) };
        const QString& text = options.arguments[2 * place + 1];
        const auto bytes = typedValue::bytesOf(parameter.type, text);
        if (!bytes)
            throw tEnd{ exitUsage, QStringLiteral("%1: \"%2\" is no value of %3; nothing was sent")
                                       .arg(textOf(parameter.name), text,
                                            tEntry::getDataTypeByIndex(tEntry::TEntryType(parameter.type))) };
        parameter.bytes = *bytes;
    }
    CNetwork network(options.network, console);
    CValues values(options, console);
    int status = exitDone;
    qsizetype done = 0;
    for (; done < parameters.size() && status == exitDone; ++done) {
        const tTyped& parameter = parameters[done];
        const auto failure = network.write(static_cast<BYTE>(options.node), parameter.name.index,
                                           parameter.name.subIndex, parameter.bytes, isNumber(parameter.type));
        if (failure) {
            report(console, parameter.name, *failure);
            status = failure->status;
            break;
        }
        values.add(parameter);
    }
    if (status != exitDone && done + 1 < parameters.size())
        console.message(QStringLiteral("%1 of %2 values were sent").arg(done).arg(parameters.size()));
    values.end();
    return status;
}
