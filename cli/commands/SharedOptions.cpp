// Options that several sub-commands have.
// SPDX-License-Identifier: MIT
#include "commands/SharedOptions.h"

#include "base/NodeId.h"
#include "dic/InstalledSheet.h"
#include "sheets/SheetFile.h"

#include <CLI/CLI.hpp>

#include <QFile>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <map>

static QString fileNameOf(const std::string& text)
{
    requireName(text);
    return sheetFileOf(text);
}

void requireName(const std::string& text)
{
    if (text.empty())
        throw CLI::ValidationError("the name of a file is empty");
}

QString sheetFileOf(const std::string& text)
{
    return findSheet(QFile::decodeName(text.c_str()));
}

CLI::Option* addText(CLI::App& command, const std::string& name, QString& text, const std::string& description)
{
    return command
        .add_option_function<std::string>(
            name, [&text](const std::string& value) { text = QString::fromLocal8Bit(value.c_str()); }, description)
        ->type_name("TEXT");
}

CLI::Option* addTexts(CLI::App& command, const std::string& name, const std::string& description, QStringList& texts)
{
    return command
        .add_option_function<std::vector<std::string>>(
            name,
            [&texts](const std::vector<std::string>& values) {
                for (const std::string& text : values)
                    texts += QString::fromLocal8Bit(text.c_str());
            },
            description)
        ->required()
        ->type_name("");
}

CLI::Option* addFile(CLI::App& command, const std::string& name, QString& fileName, const std::string& description)
{
    return command
        .add_option_function<std::string>(
            name, [&fileName](const std::string& text) { fileName = fileNameOf(text); }, description)
        ->type_name("FILE");
}

CLI::Option* addFiles(CLI::App& command, const std::string& name, const std::string& description,
                      QStringList& fileNames)
{
    return command
        .add_option_function<std::vector<std::string>>(
            name,
            [&fileNames](const std::vector<std::string>& texts) {
                std::transform(texts.cbegin(), texts.cend(), std::back_inserter(fileNames), fileNameOf);
            },
            description)
        ->type_name("");
}

int decimalOf(const std::string& text, const std::string& option, int least, int most)
{
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, 10);
    if (stop != end || error != std::errc() || number < least || number > most)
        throw CLI::ValidationError(option, "expected a number from " + std::to_string(least) + " to " +
                                               std::to_string(most) + ", not " + text);
    return number;
}

CLI::Option* addNumber(CLI::App& command, const std::string& name, int least, int most,
                       const std::function<void(int number)>& set, const std::string& description)
{
    const std::string option = name.substr(name.rfind(',') + 1);
    return command.add_option_function<std::string>(
        name, [=](const std::string& text) { set(decimalOf(text, option, least, most)); }, description);
}

static void addMilliseconds(CLI::App& command, const char* name, std::optional<int>& time, int most,
                            const char* description)
{
    addNumber(
        command, name, 1, most, [&time](int value) { time = value; }, description)
        ->type_name("MS");
}

CLI::Option* addNetwork(CLI::App& command, tNetworkOptions& options)
{
    constexpr int longestSdoTimeout = 65535;
    constexpr int longestLineTimeout = 3600000;
    addMilliseconds(command, "--timeout", options.sdoTimeout, longestSdoTimeout,
                    "SDO time-out in ms; on CAN 500 otherwise. A gateway is told to use it, too");
    addMilliseconds(command, "--gateway-timeout", options.gatewayTimeout, longestLineTimeout,
                    "how long to wait for each line of a gateway, in ms; 66000 otherwise");
    return addText(command, "-i,--interface", options.interface,
                   "CAN interface (can0) or gateway (localhost:60000, 192.168.1.10:5000)")
        ->type_name("INTERFACE")
        ->required();
}

CLI::Option* addNode(CLI::App& command, int& node)
{
    return addNumber(
               command, "-n,--node", 1, highestNodeId, [&node](int number) { node = number; },
               "node-id of the device, 1 to 127")
        ->type_name("ID");
}

CLI::Option* addSheet(CLI::App& command, QString& fileName)
{
    return addFile(command, "-s,--sheet", fileName, "data sheet of the device (EDS or DCF): names and types");
}

void addMode(CLI::App& command, valueFormats::TDisplayMode& mode)
{
    static const std::map<std::string, valueFormats::TDisplayMode> modes = { { "hex", valueFormats::modeHex },
                                                                             { "dec", valueFormats::modeDec },
                                                                             { "oct", valueFormats::modeOct } };
    command
        .add_option_function<std::string>(
            "--mode", [&mode](const std::string& word) { mode = modes.at(word); },
            "how numbers are shown: hex, dec, oct")
        ->check(CLI::IsMember(modes))
        ->type_name("MODE");
}

void addType(CLI::App& command, std::optional<int>& type)
{
    const auto isWord = [](const std::string& word) {
        return typedValue::typeOfWord(QString::fromStdString(word)) ? std::string() : "no data type: " + word;
    };
    command
        .add_option_function<std::string>(
            "--type", [&type](const std::string& word) { type = typedValue::typeOfWord(QString::fromStdString(word)); },
            "data type of the values: " + typedValue::words().toStdString())
        ->check(isWord)
        ->type_name("TYPE");
}

std::unique_ptr<CDataSheet> loadSheetIfNamed(const QString& fileName)
{
    if (fileName.isEmpty())
        return nullptr;
    auto sheet = std::make_unique<CDataSheet>();
    loadSheet(*sheet, fileName);
    return sheet;
}
