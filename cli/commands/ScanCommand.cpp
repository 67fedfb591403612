// velmora-cli scan
// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "commands/SharedOptions.h"
#include "network/Scan.h"

#include <CLI/CLI.hpp>

#include <map>
#include <memory>

namespace
{

struct tScanOptions {
    tNetworkOptions network;
    tScanFormat format = scanTable;
};

} // namespace

void addScan(CLI::App& app, tCommand& command)
{
    static const std::map<std::string, tScanFormat> formats = { { "table", scanTable },
                                                                { "csv", scanCsv },
                                                                { "json", scanJson } };
    const auto options = std::make_shared<tScanOptions>();
    CLI::App& scan = *app.add_subcommand("scan", "Asks all 127 nodes whether they are there, and what they are");
    addNetwork(scan, options->network);
    scan.add_option_function<std::string>(
            "--format", [options](const std::string& word) { options->format = formats.at(word); },
            "table, csv or json")
        ->check(CLI::IsMember(formats))
        ->type_name("FORMAT");
    scan.footer("A gateway asks one node after the other: --timeout 50 makes it wait no longer than 50 ms for each.\n"
                "The exit status is 3 when no node answers.\n"
                "Example:\n  velmora-cli scan -i can0");
    scan.callback([=, &command] {
        command = [=](CConsole& console) { return scanNetwork(options->network, options->format, console); };
    });
}
