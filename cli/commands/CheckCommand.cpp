// velmora-cli check
// SPDX-License-Identifier: MIT
#include "commands/Commands.h"
#include "commands/SharedOptions.h"

#include "console/Console.h"
#include "console/Interrupt.h"
#include "sheets/FindingsText.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace
{

const char checkFooter[] =
    "After the browser's verdict, each finding is FILE:LINE:COLUMN: SEVERITY: TEXT [RULE].\n"
    "Ends with 0 without an error, 1 after an error (with --werror also after a warning), 2 when a file\n"
    "cannot be read.\n\n"
    "Example:\n  velmora-cli check --disable unknown-key --werror device.eds";

struct tCheckOptions {
    std::vector<std::string> files;
    std::vector<std::string> disabled;
    std::vector<std::string> only;
    std::string format = "text";
    bool isStrict = false;
    bool listsRules = false;
};

tRule namedRule(const std::string& name)
{
    if (const auto rule = ruleByName(name))
        return *rule;
    throw tEnd{ exitUsage,
                QStringLiteral("no such rule: %1; --rules lists them").arg(QString::fromLocal8Bit(name.c_str())) };
}

tRuleSet chosenRules(const tCheckOptions& options)
{
    tRuleSet rules;
    if (options.only.empty())
        rules.set();
    for (const std::string& name : options.only)
        rules.set(namedRule(name));
    for (const std::string& name : options.disabled)
        rules.reset(namedRule(name));
    return rules;
}

int statusOf(const tCheckResult& result, bool isStrict)
{
    if (!result.isRead)
        return exitUsage;
    const bool isBad = !result.isLoaded || result.count(severityError) > 0;
    return isBad || (isStrict && result.count(severityWarning) > 0) ? exitDifference : exitDone;
}

int runCheck(const tCheckOptions& options, CConsole& console)
{
    if (options.listsRules) {
        console.write(rulesText().toUtf8());
        return exitDone;
    }
    if (options.files.empty())
        throw tEnd{ exitUsage, QStringLiteral("no FILE to check; try 'velmora-cli check --help'") };
    const tRuleSet rules = chosenRules(options);
    const bool isText = options.format == "text";
    std::vector<tCheckResult> results;
    int status = exitDone;
    for (const std::string& file : options.files) {
        endWhenInterrupted();
        tCheckResult result = checkSheet(sheetFileOf(file), rules);
        status = std::max(status, statusOf(result, options.isStrict));
        if (!result.isRead)
            console.message(result.verdict);
        else if (isText)
            console.write(findingsText(result).toUtf8());
        if (!isText)
            results.push_back(std::move(result));
    }
    if (!isText)
        console.write(options.format == "json" ? findingsJson(results) : findingsSarif(results));
    return status;
}

} // namespace

void addCheck(CLI::App& app, tCommand& command)
{
    const auto options = std::make_shared<tCheckOptions>();
    CLI::App* const check =
        app.add_subcommand("check", "Checks data sheets: whether the browser loads them, and by the "
                                    "rules of CiA 306");
    check->add_option("FILE", options->files, "Data sheets (EDS) and configurations (DCF, by their name)");
    check->add_option("--disable", options->disabled, "Rules that are not to be used, by name")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("RULE");
    check->add_option("--only", options->only, "The only rules to be used, by name")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("RULE");
    check->add_option("--format", options->format, "text, json, or sarif (SARIF 2.1.0)")
        ->check(CLI::IsMember({ "text", "json", "sarif" }))
        ->type_name("FORMAT");
    check->add_flag("--werror", options->isStrict, "A warning counts as an error for the exit status");
    check->add_flag("--rules", options->listsRules, "Lists the rules and ends");
    check->footer(checkFooter);
    check->callback(
        [options, &command] { command = [options](CConsole& console) { return runCheck(*options, console); }; });
}
