// velmora-cli compare
// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "commands/SharedOptions.h"
#include "network/Compare.h"

#include <CLI/CLI.hpp>

#include <map>

void addCompare(CLI::App& app, tCommand& command)
{
    static const std::map<std::string, tCompareFormat> formats = { { "table", compareTable },
                                                                   { "csv", compareCsv },
                                                                   { "json", compareJson } };
    const auto options = std::make_shared<tCompareOptions>();
    CLI::App& compareApp = *app.add_subcommand("compare", "Compares a device, a dump, a DCF and a data sheet with each "
                                                          "other");
    CLI::Option* interface = addNetwork(compareApp, options->network)->required(false);
    interface->needs(addNode(compareApp, options->node)->needs(interface));
    addSheet(compareApp, options->sheet)->needs(interface);
    compareApp.add_flag("--all", options->all,
                        "count entries that the device changes by itself, too: read-only ones, 1001, 1003");
    compareApp
        .add_option_function<std::string>(
            "--format", [options](const std::string& word) { options->format = formats.at(word); },
            "table, csv or json")
        ->check(CLI::IsMember(formats))
        ->type_name("FORMAT");
    addFiles(compareApp, "files", "one file and a device (-i, -n), or two files: .eds, .dcf, .csv, .json",
             options->files)
        ->required();
    compareApp.footer(
        "An entry whose value one of them does not know is not compared; one that only one of them has is a "
        "difference.\n"
        "The exit status is 1 when there are differences that count.\n"
        "Examples:\n  velmora-cli compare -i can0 -n 5 node5.dcf\n  velmora-cli compare node5.dcf node6.dcf");
    compareApp.callback([=, &command] { command = [=](CConsole& console) { return compare(*options, console); }; });
}
