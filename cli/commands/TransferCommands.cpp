// velmora-cli read and velmora-cli write
// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "commands/SharedOptions.h"
#include "network/TimeText.h"
#include "network/Transfers.h"

#include <CLI/CLI.hpp>

#include <limits>
#include <memory>

namespace
{

// Answers the option for the format.
CLI::Option* addTransferOptions(CLI::App& command, tTransferOptions& options)
{
    addNetwork(command, options.network);
    addNode(command, options.node)->required();
    addSheet(command, options.sheet);
    addType(command, options.type);
    addMode(command, options.mode);
    return command
        .add_option_function<std::string>(
            "--format", [&](const std::string& word) { options.format = word == "json" ? formatJson : formatPlain; },
            "plain (one value a line) or json")
        ->check(CLI::IsMember({ "plain", "json" }))
        ->type_name("FORMAT");
}

int intervalOf(const std::string& text)
{
    if (const auto milliseconds = millisecondsOf(QString::fromLocal8Bit(text.c_str())))
        return *milliseconds;
    throw CLI::ValidationError("--every", "expected a time such as 100ms, 2s or 1min, not " + text);
}

} // namespace

void addRead(CLI::App& app, tCommand& command)
{
    const auto options = std::make_shared<tTransferOptions>();
    CLI::App& read = *app.add_subcommand("read", "Reads parameters of a device and prints their values");
    auto* format = addTransferOptions(read, *options);
    addTexts(read, "parameters", "PARAMETER: 1018:1, 0x1018sub1 (hexadecimal) or the name in the sheet",
             options->arguments);
    auto* repeat =
        addNumber(
            read, "--repeat", 0, std::numeric_limits<int>::max(), [options](int number) { options->repeat = number; },
            "read N times, as CSV with time stamps; 0: until Ctrl-C")
            ->excludes(format)
            ->type_name("N");
    auto* every = read.add_option_function<std::string>(
                          "--every", [options](const std::string& text) { options->every = intervalOf(text); },
                          "time from one reading to the next: 100ms, 2s, 1min; until Ctrl-C without --repeat")
                      ->excludes(format)
                      ->type_name("TIME");
    read.footer("Example:\n  velmora-cli read -i localhost:60000 -n 5 -s velmora-demo.eds 1018:1 \"Producer heartbeat "
                "time\"");
    read.callback([=, &command] {
        const bool series = repeat->count() > 0 || every->count() > 0;
        if (repeat->count() == 0 && every->count() > 0)
            options->repeat = 0;
        command = [=](CConsole& console) {
            const auto sheet = loadSheetIfNamed(options->sheet);
            const CCANopen* dictionary = sheet ? &sheet->dictionary() : nullptr;
            return series ? readSeries(*options, dictionary, console) : readParameters(*options, dictionary, console);
        };
    });
}

void addWrite(CLI::App& app, tCommand& command)
{
    const auto options = std::make_shared<tTransferOptions>();
    CLI::App& write = *app.add_subcommand("write", "Writes parameters of a device and prints the values as sent");
    addTransferOptions(write, *options);
    addTexts(write, "assignments", "PARAMETER VALUE pairs: 1017 1000", options->arguments);
    write.footer("A text that begins with a hyphen needs -- before the first parameter; a negative number does not.\n"
                 "Example:\n  velmora-cli write -i can0 -n 5 --type u16 1017 1000");
    write.callback([=, &command] {
        command = [=](CConsole& console) {
            const auto sheet = loadSheetIfNamed(options->sheet);
            return writeParameters(*options, sheet ? &sheet->dictionary() : nullptr, console);
        };
    });
}
