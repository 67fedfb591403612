// The sub-commands of velmora-cli: each adds its options to the command line, and what runs when it was given.
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace CLI
{
class App;
}
class CConsole;

/// What the chosen command does; answers the exit status. May end by throwing `tEnd`.
using tCommand = std::function<int(CConsole& console)>;

// Each adds a sub-command. When it was given and its options are right, its work is put into `command`.

void addCheck(CLI::App& app, tCommand& command);
void addList(CLI::App& app, tCommand& command);
void addDiff(CLI::App& app, tCommand& command);
void addRead(CLI::App& app, tCommand& command);
void addWrite(CLI::App& app, tCommand& command);
void addDump(CLI::App& app, tCommand& command);
void addCompare(CLI::App& app, tCommand& command);
void addRestore(CLI::App& app, tCommand& command);
void addScan(CLI::App& app, tCommand& command);
void addNmt(CLI::App& app, tCommand& command);
