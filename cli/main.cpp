// velmora-cli: data sheets and devices for scripts and test benches.
// SPDX-License-Identifier: MIT
#include "base/Product.h"
#include "commands/Commands.h"
#include "console/Console.h"
#include "console/Interrupt.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <new>
#include <sstream>

namespace
{

const char description[] = "Checks and lists CANopen data sheets, and reads, writes, saves and restores the parameters "
                           "of devices.";
const char footer[] =
    "'velmora-cli COMMAND --help' explains a command. Exit statuses: 0 done, 1 a difference or a "
    "finding,\n2 wrong usage or a file that cannot be read, 3 no interface or no answer, 4 the device "
    "aborted, 130 Ctrl-C.";

// `first`: the first argument, null without any.
QString problemOf(const CLI::ParseError& error, const CLI::App& app, const char* first)
{
    if (!app.get_subcommands().empty())
        return QString::fromLocal8Bit(error.what());
    if (first == nullptr)
        return QStringLiteral("a command is missing");
    return QLatin1String(*first == '-' ? "a command comes first, not " : "no such command: ") +
           QString::fromLocal8Bit(first);
}

// Reads the arguments. @return the exit status when there is nothing to run, else -1
int readArguments(int argc, char* argv[], tCommand& command, CConsole& console)
{
    CLI::App app(description, "velmora-cli");
    app.set_version_flag("--version", std::string("velmora-cli ") + product::version);
    app.footer(footer);
    app.require_subcommand(1);
    for (const auto add :
         { addCheck, addList, addDiff, addScan, addRead, addWrite, addDump, addCompare, addRestore, addNmt })
        add(app, command);
    try {
        app.parse(argc, argv);
        return -1;
    } catch (const CLI::Success& success) { // --help and --version
        std::ostringstream text;
        app.exit(success, text, text);
        console.write(QByteArray::fromStdString(text.str()));
        return exitDone;
    } catch (const CLI::ParseError& error) {
        console.message(problemOf(error, app, argv[1]));
        const auto chosen = app.get_subcommands();
        const std::string hint = chosen.empty() ? std::string() : ' ' + chosen.front()->get_name();
        console.message(QStringLiteral("try 'velmora-cli%1 --help'").arg(QString::fromStdString(hint)));
        return exitUsage;
    }
}

int runCommand(int argc, char* argv[], CConsole& console)
{
    tCommand command;
    int status = readArguments(argc, argv, command, console);
    if (status < 0)
        status = command(console);
    console.flush();
    return status;
}

int run(int argc, char* argv[])
{
    CConsole console;
    try {
        return runCommand(argc, argv, console);
    } catch (const tEnd& end) {
        if (!end.message.isEmpty())
            console.message(end.message);
        return end.status;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    endAtInterrupts();
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::fputs("velmora-cli: not enough memory\n", stderr);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "velmora-cli: %s\n", exception.what());
    }
    return exitUsage;
}
