// Which nodes are there, and what they say of themselves.
// SPDX-License-Identifier: MIT
#pragma once

#include "network/Network.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <vector>

/// What a node is asked for; the order is that of `tFoundNode::values` and of the columns.
enum tScanField { scanDeviceType, scanVendor, scanProduct, scanRevision, scanSerial, scanName, scanFieldCount };

/// A node that answers. A value is missing where the node aborted, or was not asked any more.
struct tFoundNode {
    unsigned node = 0;
    std::array<std::optional<QByteArray>, scanFieldCount> values;
};

/// Asks all nodes, 1 to 127, for their device type, and those that answer for the rest.
///
/// On CAN the requests go out one after the other without waiting for answers; these are sorted by their identifiers.
/// Through a gateway each node is asked when the one before has answered or the gateway has given it up.
class CScan
{
public:
    /// `wait` lets time pass; it may end the command.
    CScan(CNetwork& network, const tNetworkOptions& options, CConsole& console,
          std::function<void(std::chrono::milliseconds)> wait);

    /// Finds and asks all nodes; throws `tEnd` as the network does. @return `exitNetwork` when the interface failed, or
    /// a node did not answer any more; what was found is then kept
    int run();

    /// Those found so far, by node-id.
    const std::vector<tFoundNode>& nodes() const { return m_nodes; }
    /// How far `run` has come: "nodes 1 to 12 were asked".
    QString progressText() const;

private:
    int runOnCan();
    int runThroughGateway();
    void sendRequest(unsigned node);
    void takeAnswers();
    void takeAnswer(const tCanMessage& message);
    void add(unsigned node);
    int askFound();
    int askNode(tFoundNode& found);

    CNetwork& m_network;
    const tNetworkOptions& m_options;
    CConsole& m_console;
    const std::function<void(std::chrono::milliseconds)> m_wait;
    std::vector<tFoundNode> m_nodes;
    unsigned m_asked = 0;               // the last node that was asked whether it is there
    std::vector<unsigned> m_questioned; // the nodes that were asked for all fields
};

/// The nodes as text, with a header; an empty JSON array, a header alone or no table without any.
enum tScanFormat { scanTable, scanCsv, scanJson };
QByteArray scanText(const std::vector<tFoundNode>& nodes, tScanFormat format);

/// Scans and prints what it has found, also when it ends early. @return the exit status; `exitNetwork` when nobody
/// answers
int scanNetwork(const tNetworkOptions& options, tScanFormat format, CConsole& console);
