// velmora-cli nmt
// SPDX-License-Identifier: MIT
#include "base/NodeId.h"
#include "commands/Commands.h"
#include "commands/SharedOptions.h"
#include "network/NetworkCommands.h"

#include <CLI/CLI.hpp>

namespace
{

struct tNmtOptions {
    tNetworkOptions network;
    std::string word;
    int node = 0; // 0: all
};

// The node-id of a text, 0 for "all".
int nodeOf(const std::string& text)
{
    return text == "all" ? 0 : decimalOf(text, "node", 1, highestNodeId);
}

} // namespace

void addNmt(CLI::App& app, tCommand& command)
{
    const auto options = std::make_shared<tNmtOptions>();
    std::vector<std::string> words;
    for (const QString& word : nmtWords())
        words.push_back(word.toStdString());
    CLI::App& nmt = *app.add_subcommand("nmt", "Sends a network management command to a node, or to all");
    addNetwork(nmt, options->network);
    nmt.add_option("command", options->word, "start, stop, preop, reset or reset-comm")
        ->required()
        ->check(CLI::IsMember(words))
        ->type_name("COMMAND");
    nmt.add_option_function<std::string>(
           "node", [options](const std::string& text) { options->node = nodeOf(text); }, "1 to 127, or all")
        ->required()
        ->type_name("NODE");
    nmt.footer("Example:\n  velmora-cli nmt -i can0 start 5");
    nmt.callback([=, &command] {
        command = [=](CConsole& console) {
            return sendNmt(options->network, QString::fromStdString(options->word), options->node, console);
        };
    });
}
