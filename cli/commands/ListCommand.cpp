// velmora-cli list
// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "commands/SharedOptions.h"

#include "console/Console.h"
#include "sheets/DictionaryList.h"

#include <CLI/CLI.hpp>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace
{

const char listFooter[] =
    "A row for each entry, also for one that is described twice: its index and sub-index, name, data type, access,\n"
    "low and high limit and default value as in the sheet, and whether a PDO can carry it.\n\n"
    "Example:\n  velmora-cli list device.eds --index 1000-1FFF --grep cob-id --format csv";

struct tListOptions {
    std::string file;
    std::string format = "table";
    std::string pattern;
    std::vector<std::string> ranges;
};

const std::map<std::string, QByteArray (*)(const std::vector<tListRow>& rows)> formats = {
    { "table", listAsTable },
    { "csv", listAsCsv },
    { "json", listAsJson },
};

int runList(const tListOptions& options, CConsole& console)
{
    tListChoice choice;
    choice.setPattern(QString::fromLocal8Bit(options.pattern.c_str()));
    for (const std::string& range : options.ranges)
        choice.addRange(QString::fromLocal8Bit(range.c_str()));
    console.write(formats.at(options.format)(dictionaryList(sheetFileOf(options.file), choice)));
    return exitDone;
}

} // namespace

void addList(CLI::App& app, tCommand& command)
{
    const auto options = std::make_shared<tListOptions>();
    CLI::App* const list = app.add_subcommand("list", "Lists the entries of a data sheet");
    list->add_option("FILE", options->file, "A data sheet (EDS) or configuration (DCF, by its name)")->required();
    list->add_option("--format", options->format, "table, csv or json")
        ->check(CLI::IsMember({ "table", "csv", "json" }))
        ->type_name("FORMAT");
    list->add_option("--grep", options->pattern,
                     "Only entries where this regular expression is found in the name, the index (0x1018) or index and "
                     "sub-index (1018:1), in upper or lower case")
        ->type_name("TEXT");
    list->add_option("--index", options->ranges, "Only these indexes, hexadecimal: 1017, 1000-1FFF; may be repeated")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("RANGE");
    list->footer(listFooter);
    list->callback(
        [options, &command] { command = [options](CConsole& console) { return runList(*options, console); }; });
}
