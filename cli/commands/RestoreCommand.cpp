// velmora-cli restore
// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "commands/SharedOptions.h"
#include "network/Restore.h"

#include <CLI/CLI.hpp>

namespace
{

// The index of a text such as "1010" or "0x1F51".
unsigned indexOf(const char* option, const std::string& text)
{
    constexpr unsigned highest = 0xFFFF;
    bool isNumber = false;
    const unsigned index = QString::fromStdString(text).toUInt(&isNumber, 16);
    if (!isNumber || index > highest)
        throw CLI::ValidationError(option, "expected an index such as 1003, not " + text);
    return index;
}

void addIndexes(CLI::App& app, const char* option, std::set<unsigned>& indexes, const char* help)
{
    app.add_option_function<std::vector<std::string>>(
           option,
           [option, &indexes](const std::vector<std::string>& texts) {
               for (const std::string& text : texts)
                   indexes.insert(indexOf(option, text));
           },
           help)
        ->type_name("INDEX")
        ->take_all()
        ->allow_extra_args(false);
}

} // namespace

void addRestore(CLI::App& app, tCommand& command)
{
    const auto options = std::make_shared<tRestoreOptions>();
    CLI::App& restoreApp = *app.add_subcommand("restore", "Writes the values of a DCF or a dump back into a device");
    addNetwork(restoreApp, options->network);
    addNode(restoreApp, options->node)->required();
    addFile(restoreApp, "file", options->file,
            "the values: .dcf, .csv, .json, or .eds for the default values of a data sheet")
        ->required();
    restoreApp.add_flag("--dry-run", options->dryRun, "only read the device, and list what would be written");
    restoreApp.add_flag("--store", options->store, "let the device store its parameters (1010:1) when all was written");
    restoreApp.add_flag("--force", options->force,
                        "also to a device with another type, vendor or product (1000, 1018)");
    restoreApp.add_flag("--keep-going", options->keepGoing, "go on after a parameter that the device refuses");
    restoreApp.add_flag_callback(
        "--no-start", [options] { options->start = false; },
        "leave a node whose state before is not known in pre-operational");
    addIndexes(restoreApp, "--include", options->include,
               "write this index, too: 1003, 1010, 1011, 1F50 to 1F5F and write-only entries are left out otherwise");
    addIndexes(restoreApp, "--exclude", options->exclude, "do not write this index");
    restoreApp.footer(
        "Compares first and writes only what differs, then reads it back. PDO parameters are written in\n"
        "pre-operational: afterwards the node is brought back into its state, which is learned from its heartbeat.\n"
        "Example:\n  velmora-cli restore -i can0 -n 5 node5.dcf --dry-run");
    restoreApp.callback([=, &command] { command = [=](CConsole& console) { return restore(*options, console); }; });
}
