// velmora-cli check
// SPDX-License-Identifier: MIT
#include "commands/Commands.h"

#include <CLI/CLI.hpp>

void addCheck(CLI::App& app, tCommand& command)
{
    (void)app;
    (void)command;
}
