// velmora-cli dump
// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "commands/SharedOptions.h"
#include "network/Dump.h"

#include <CLI/CLI.hpp>

#include <map>

void addDump(CLI::App& app, tCommand& command)
{
    static const std::map<std::string, tDumpFormat> formats = {
        { "table", dumpTable }, { "csv", dumpCsv }, { "json", dumpJson }, { "dcf", dumpDcf }
    };
    const auto options = std::make_shared<tDumpOptions>();
    CLI::App& dump = *app.add_subcommand("dump", "Saves the values of all entries of a device that can be read");
    addNetwork(dump, options->network);
    addNode(dump, options->node)->required();
    addSheet(dump, options->sheet)->required();
    dump.add_option_function<std::string>(
            "-o,--output",
            [options](const std::string& text) {
                requireName(text);
                options->output = QString::fromLocal8Bit(text.c_str());
            },
            "the file to write, complete or not at all; standard output otherwise")
        ->type_name("FILE");
    dump.add_option_function<std::string>(
            "--format", [options](const std::string& word) { options->format = formats.at(word); },
            "table, csv, json or dcf; otherwise by the end of the file's name, and a table without a file")
        ->check(CLI::IsMember(formats))
        ->type_name("FORMAT");
    dump.footer(
        "Entries that the device refuses are listed, and the exit status is 4 then. Values that the file cannot "
        "hold are\ntold, and it is 1; CSV and JSON hold all of them.\n"
        "Example:\n  velmora-cli dump -i can0 -n 5 -s velmora-demo.eds -o node5.dcf");
    dump.callback([=, &command] { command = [=](CConsole& console) { return dumpDevice(*options, console); }; });
}
