// velmora-cli diff
// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "commands/SharedOptions.h"

#include "console/Console.h"
#include "sheets/SheetDifferences.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace
{

const char diffFooter[] =
    "Compared are devices, objects and entries: names, types, access, limits, default values, PDO mapping, and the\n"
    "values of configurations. 0x10 and 16 are equal. Ends with 1 when there is a difference, otherwise with 0.\n\n"
    "Example:\n  velmora-cli diff device-1.0.eds device-1.1.eds";

struct tDiffOptions {
    std::string fileA;
    std::string fileB;
    std::string format = "text";
};

int runDiff(const tDiffOptions& options, CConsole& console)
{
    const QString nameA = sheetFileOf(options.fileA);
    const QString nameB = sheetFileOf(options.fileB);
    const auto differences = sheetDifferences(nameA, nameB);
    const auto write = options.format == "json" ? differencesAsJson : differencesAsText;
    console.write(write(differences, nameA, nameB));
    return differences.empty() ? exitDone : exitDifference;
}

} // namespace

void addDiff(CLI::App& app, tCommand& command)
{
    const auto options = std::make_shared<tDiffOptions>();
    CLI::App* const diff = app.add_subcommand("diff", "Compares two data sheets by meaning, not by text");
    diff->add_option("A", options->fileA, "A data sheet (EDS) or configuration (DCF, by its name)")->required();
    diff->add_option("B", options->fileB, "The other one")->required();
    diff->add_option("--format", options->format, "text or json")
        ->check(CLI::IsMember({ "text", "json" }))
        ->type_name("FORMAT");
    diff->footer(diffFooter);
    diff->callback(
        [options, &command] { command = [options](CConsole& console) { return runDiff(*options, console); }; });
}
