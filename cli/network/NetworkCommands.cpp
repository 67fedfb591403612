// Network management commands.
// SPDX-License-Identifier: MIT
#include "network/NetworkCommands.h"

#include "console/Interrupt.h"

#include <algorithm>
#include <iterator>

namespace
{

struct tNmtWord {
    const char* word;
    bool (CCANopenAccess::*command)(BYTE node);
};

constexpr tNmtWord nmtRows[] = {
    { "start", &CCANopenAccess::startRemoteNode },          { "stop", &CCANopenAccess::stopRemoteNode },
    { "preop", &CCANopenAccess::enterPreOperationalState }, { "reset", &CCANopenAccess::resetNode },
    { "reset-comm", &CCANopenAccess::resetCommunication },
};

} // namespace

QStringList nmtWords()
{
    QStringList words;
    for (const tNmtWord& row : nmtRows)
        words += QLatin1String(row.word);
    return words;
}

int sendNmt(const tNetworkOptions& options, const QString& word, int node, CConsole& console)
{
    const auto* row = std::find_if(std::begin(nmtRows), std::end(nmtRows),
                                   [&word](const tNmtWord& each) { return word == QLatin1String(each.word); });
    if (row == std::end(nmtRows))
        throw tEnd{ exitUsage, QStringLiteral("no NMT command: %1").arg(word) };
    CNetwork network(options, console);
    std::optional<tFailure> failure;
    bool isSent = false;
    const auto send = [&](CCANopenAccess& access) {
        isSent = true;
        return (access.*row->command)(static_cast<BYTE>(node));
    };
    tellWhenInterrupted([&] { failure = network.run(send); },
                        [&] {
                            return isSent ? QStringLiteral("the command was sent, but not answered")
                                          : QStringLiteral("nothing was sent to a device");
                        });
    if (!failure)
        return exitDone;
    console.message(failure->text);
    return failure->status;
}
