// Reading and writing parameters of one device, as texts.
// SPDX-License-Identifier: MIT
#include "network/Transfers.h"

#include "console/Interrupt.h"
#include "console/JsonText.h"
#include "dic/ValueTypes.h"
#include "network/NodeReading.h"
#include "sheets/Csv.h"
#include "sheets/EntryText.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
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
                        { QStringLiteral("type"), dataTypeName(parameter.type) },
                        { QStringLiteral("value"), typedValue::exactTextOf(parameter.type, parameter.bytes, mode) },
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
            m_console.write(jsonText(QJsonDocument(m_json)));
    }

private:
    const tTransferOptions& m_options;
    CConsole& m_console;
    QJsonArray m_json;
};

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

// One row of a series; the gravest exit status of its readings.
int readRow(CNetwork& network, const tTransferOptions& options, const QList<tTyped>& parameters, CConsole& console)
{
    QStringList row{ QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs) };
    int status = exitDone;
    for (const tTyped& parameter : parameters) {
        const auto [bytes, failure] =
            network.read(static_cast<BYTE>(options.node), parameter.name.index, parameter.name.subIndex);
        row += failure ? QString() : typedValue::textOf(parameter.type, bytes, options.mode);
        if (failure) {
            report(console, parameter.name, *failure);
            status = graver(status, failure->status);
        } else if (typedValue::sizeDiffers(parameter.type, bytes.size())) {
            warnOfSize(console, textOf(parameter.name), parameter.type, bytes.size());
            status = graver(status, exitDifference);
        }
    }
    console.write(csvLine(row));
    console.flush();
    return status;
}

// The bytes of a value as it was typed; ends the command when it is none.
QByteArray bytesToSend(const tTyped& parameter, const QString& text)
{
    if (auto bytes = typedValue::bytesOf(parameter.type, text))
        return *bytes;
    throw tEnd{ exitUsage, QStringLiteral("%1: \"%2\" is no value of %3; nothing was sent")
                               .arg(textOf(parameter.name), text, dataTypeName(parameter.type)) };
}

QList<tTyped> valuesToSend(const tTransferOptions& options, const CCANopen* sheet)
{
    if (options.arguments.size() % 2 != 0)
        throw tEnd{ exitUsage, QStringLiteral("the value of %1 is missing").arg(options.arguments.last()) };
    auto parameters = typedParameters(options, sheet, 2);
    for (qsizetype place = 0; place < parameters.size(); ++place) {
        if (!options.type && parameters[place].name.entry == nullptr)
            throw tEnd{ exitUsage,
                        (sheet != nullptr
                             ? QStringLiteral("%1: it is not in the sheet; --type tells its type")
                             : QStringLiteral("%1: its type is not known; --type or a data sheet (-s) tells it"))
                            .arg(textOf(parameters[place].name)) };
        parameters[place].bytes = bytesToSend(parameters[place], options.arguments[2 * place + 1]);
    }
    return parameters;
}

// How far writing has come: "1 of 3 values were written, not 1006, 2008".
QString written(const QList<tTyped>& parameters, qsizetype done)
{
    QStringList rest;
    for (qsizetype place = done; place < parameters.size(); ++place)
        rest += textOf(parameters[place].name);
    return QStringLiteral("%1 of %2 values were written, not %3")
        .arg(QString::number(done), QString::number(parameters.size()), rest.join(QStringLiteral(", ")));
}

} // namespace

int readParameters(const tTransferOptions& options, const CCANopen* sheet, CConsole& console)
{
    auto parameters = typedParameters(options, sheet, 1);
    CNetwork network(options.network, console);
    CValues values(options, console);
    int status = exitDone;
    qsizetype done = 0;
    const auto readAll = [&] {
        for (; done < parameters.size() && status != exitNetwork; ++done) {
            tTyped& parameter = parameters[done];
            const auto [bytes, failure] =
                network.read(static_cast<BYTE>(options.node), parameter.name.index, parameter.name.subIndex);
            if (failure) {
                report(console, parameter.name, *failure);
                status = graver(status, failure->status);
                continue;
            }
            parameter.bytes = bytes;
            values.add(parameter);
            if (typedValue::sizeDiffers(parameter.type, bytes.size())) {
                warnOfSize(console, textOf(parameter.name), parameter.type, bytes.size());
                status = graver(status, exitDifference);
            }
        }
    };
    tellWhenInterrupted(readAll, [&] {
        values.end();
        return QStringLiteral("%1 of %2 parameters were read").arg(done).arg(parameters.size());
    });
    values.end();
    return status;
}

int readSeries(const tTransferOptions& options, const CCANopen* sheet, CConsole& console)
{
    const auto parameters = typedParameters(options, sheet, 1);
    CNetwork network(options.network, console);
    QStringList header{ QStringLiteral("time") };
    for (const tTyped& parameter : parameters)
        header += textOf(parameter.name);
    console.write(csvLine(header));
    int status = exitDone;
    int rows = 0;
    const auto readAll = [&] {
        auto next = std::chrono::steady_clock::now();
        for (; (rows < options.repeat || options.repeat == 0) && !network.isLost() && !console.isClosed(); ++rows) {
            sleepUntil(next);
            // What a slow reading has missed is not made up for.
            next = std::max(next + std::chrono::milliseconds(std::max(options.every, 0)),
                            std::chrono::steady_clock::now());
            status = graver(status, readRow(network, options, parameters, console));
        }
    };
    tellWhenInterrupted(readAll, [&] { return QStringLiteral("after reading number %1").arg(rows); });
    return status;
}

int writeParameters(const tTransferOptions& options, const CCANopen* sheet, CConsole& console)
{
    const auto parameters = valuesToSend(options, sheet);
    CNetwork network(options.network, console);
    for (const tTyped& parameter : parameters)
        if (const auto refused = network.refusal(parameter.bytes))
            throw tEnd{ exitUsage,
                        QStringLiteral("%1: %2; nothing was sent").arg(textOf(parameter.name), refused->text) };
    CValues values(options, console);
    int status = exitDone;
    qsizetype done = 0;
    const auto writeAll = [&] {
        for (; done < parameters.size(); ++done) {
            const tTyped& parameter = parameters[done];
            const auto failure = network.write(static_cast<BYTE>(options.node), parameter.name.index,
                                               parameter.name.subIndex, parameter.bytes, isNumber(parameter.type));
            if (failure) {
                report(console, parameter.name, *failure);
                status = failure->status;
                return;
            }
            values.add(parameter);
        }
    };
    const QString unsure = QStringLiteral("; the first of these may have been");
    tellWhenInterrupted(writeAll, [&] {
        values.end();
        return written(parameters, done) + unsure;
    });
    if (status != exitDone)
        console.message(written(parameters, done) + (status == exitNetwork ? unsure : QString()));
    values.end();
    return status;
}
